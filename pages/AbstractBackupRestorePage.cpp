#include "pages/AbstractBackupRestorePage.h"

#include "data/PrimitiveTypeWrapper.h"
#include "data/requestNumbers.h"
#include "data/uploadLimit.h"
#include "html/componentMaps.h"
#include "pages/catalogueNumbers.h"
#include "pages/libraryText.h"

#include <VeskLib/Gui/Button.h>
#include <VeskLib/Gui/HiddenField.h>
#include <VeskLib/Gui/SelectFile.h>
#include <VeskLib/Gui/TextString.h>
#include <VeskLib/LockedFile.h>
#include <VeskLib/PException.h>
#include <VeskLib/VeskUi/EFIConfFile.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <ctime>

namespace VeskLib::Gui {

namespace {

const mode_t BACKUP_FILE_MODE = 0666;  // before umask
const char* const DOWNLOAD_LINK = "/common/download.cgi?functionID=5&filename=";

std::string twoDigits(int number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

// Returns the version as it appears in a download's file name.
std::string formatVersion(const std::string& version) {
    if (!version.empty() && version.front() == '-') {
        return "Unknown";
    }
    std::string name;
    for (const char character : version) {
        if (character == '\0') {
            break;
        }
        if (character != '.' && character != ' ') {
            name += character;
        }
    }
    return name;
}

}  // namespace

AbstractBackupRestorePage::AbstractBackupRestorePage(CGIRequester& requester, FormInfo& formInfo,
                                                     MessageMgr& messageMgr, int* displayMode,
                                                     const std::string& skeletonFileName,
                                                     int functionNumber)
    : CommonDefaultPage(messageMgr, displayMode, skeletonFileName),
      requester(requester),
      formInfo(formInfo),
      functionNumber(functionNumber) {
}

void AbstractBackupRestorePage::buildPage() {
    makePage();
    formInfo.terminate();
    if (errorFlag) {
        deleteComponents(componentMap);
    }
}

AbstractBackupRestorePage::ConfigurationFacts AbstractBackupRestorePage::readConfigurationFacts(
    const std::string& path) {
    VeskUi::EFIConfFile file(path.c_str());
    VeskUi::EFIConfFile::EFIConfFileHeader header;
    ConfigurationFacts facts;
    file.getFileHeader(header, facts.version, facts.partition, facts.partitionName);
    facts.saveTime = header.saveTime;
    return facts;
}

bool AbstractBackupRestorePage::checkAuthority(const std::string& refusal) {
    if (*displayMode == ALLOWED) {
        return true;
    }
    traceText(LibraryTexts::REFUSAL, refusal);
    reportError(messageMgr.getMessage(Messages::NO_PERMISSION, Details::NO_AUTHORITY));
    return false;
}

void AbstractBackupRestorePage::addMessage(const std::string& text) {
    if (message.empty()) {
        message = text;
    } else {
        message += "<br>" + text;
    }
}

void AbstractBackupRestorePage::addNotice(const std::string& text) {
    addMessage(text);
    alertFlag = true;
}

void AbstractBackupRestorePage::reportError(const std::string& text) {
    addMessage(text);
    errorFlag = true;
    deleteComponents(componentMap);
}

void AbstractBackupRestorePage::setErrMsg(int defaultMessageId, int errorCode) {
    int messageId = defaultMessageId;
    switch (errorCode) {
        case ErrorCodes::BACKEND_BUSY:
            messageId = Messages::BACKEND_BUSY;
            break;
        case ErrorCodes::FILE_UNUSABLE:
            messageId = Messages::FILE_UNUSABLE;
            break;
        case ErrorCodes::PARTITION_RUNNING:
            messageId = Messages::PARTITION_RUNNING;
            break;
        case ErrorCodes::VERSION_MISMATCH:
            messageId = Messages::VERSION_MISMATCH;
            break;
        default:
            break;
    }
    addNotice(messageMgr.getMessage(messageId, errorCode));
}

void AbstractBackupRestorePage::upload(std::string& stagingPath, std::string& lockPath) {
    try {
        if (checkUpload()) {
            storeUpload(stagingPath, lockPath);
        }
    } catch (const PException& exception) {
        // The request cannot be read: report it like a failure to rename the file.
        traceText(LibraryTexts::UPLOAD_FAILURE, "AbstractBackupRestorePage::upload");
        setErrMsg(Messages::UPLOAD_FAILED, exception.getExceptionDetail());
    }
}

bool AbstractBackupRestorePage::checkUpload() {
    const unsigned int size = formInfo.getUploadFileSize();
    if (size == 0) {
        traceText(LibraryTexts::UPLOAD_FAILURE, "Uploading BIOS Conf.(File Size=0)");
        addNotice(messageMgr.getMessage(Messages::FILE_EMPTY, Details::INVALID_SIZE));
        return false;
    }
    if (size > VeskUi::LARGEST_UPLOAD) {
        traceText(LibraryTexts::REFUSAL,
                  "AbstractBackupRestorePage::upload: Illegal file size:" + std::to_string(size));
        addNotice(messageMgr.getMessage(Messages::FILE_REFUSED, Details::INVALID_SIZE));
        return false;
    }
    const std::string name = formInfo.getUploadFileName();
    const auto extension = static_cast<std::uint32_t>(name.rfind(FILE_EXTENSION));
    // Intended: both sides wrap at 32 bits, so a name of three characters is accepted, because
    // npos equals its length minus 4. Boards have always accepted such names.
    if (extension != static_cast<std::uint32_t>(name.size()) - 4U) {
        traceText(LibraryTexts::REFUSAL,
                  "AbstractBackupRestorePage::upload: Illegal file extension");
        addNotice(messageMgr.getMessage(Messages::FILE_REFUSED, Details::INVALID));
        return false;
    }
    return true;
}

void AbstractBackupRestorePage::storeUpload(const std::string& stagingPath,
                                            const std::string& lockPath) {
    std::unique_ptr<LockedFile> lock;
    try {
        lock = std::make_unique<LockedFile>(lockPath);
    } catch (const PException& exception) {
        traceText(LibraryTexts::UPLOAD_FAILURE, "AbstractBackupRestorePage::upload");
        addNotice(messageMgr.getMessage(Messages::FILE_NOT_STORED, exception.getExceptionDetail()));
        return;
    }
    try {
        moveUpload(stagingPath);
    } catch (const PException& exception) {
        lock.reset();
        traceText(LibraryTexts::UPLOAD_FAILURE, "AbstractBackupRestorePage::installImage");
        setErrMsg(Messages::UPLOAD_FAILED, exception.getExceptionDetail());
    }
}

void AbstractBackupRestorePage::moveUpload(const std::string& stagingPath) {
    const std::string temporaryPath = formInfo.getUploadFilePath();
    if (std::rename(temporaryPath.c_str(), stagingPath.c_str()) != 0) {
        const int systemError = errno;
        traceText(LibraryTexts::UPLOAD_FAILURE,
                  "Renaming (errno:" + std::to_string(systemError) + ") " + temporaryPath);
        addNotice(messageMgr.getMessage(Messages::FILE_NOT_STORED, Details::MOVE_FAILED));
    }
}

void AbstractBackupRestorePage::restoreUploadedFile(
    VeskUi::PrimitiveTypeArray<unsigned char>& request, bool& /*finished*/, int /*function*/) {
    if (requester.setInfo(VeskUi::SET_RESTORE, request)) {
        addNotice(messageMgr.getMessage(Messages::RESTORED, Details::NONE));
    } else {
        setErrMsg(Messages::RESTORE_FAILED, requester.getErrorCode());
    }
}

void AbstractBackupRestorePage::discardUploadedFile(std::string& stagingPath,
                                                    std::string& lockPath) {
    const LockedFile lock(lockPath);
    if (std::remove(stagingPath.c_str()) != 0) {
        const int systemError = errno;
        traceSystemError("remove(" + stagingPath + ")", systemError);
    }
}

void AbstractBackupRestorePage::backup(unsigned int partition, std::string& backupPath,
                                       bool named) {
    const int descriptor = creat(backupPath.c_str(), BACKUP_FILE_MODE);
    if (descriptor < 0) {
        // Intended: only traced, because the back-end reports if it cannot write the backup.
        const int systemError = errno;
        traceSystemError("EFIBackupPage::backup()::create", systemError);
    }
    close(descriptor);  // even if it is -1

    if (!requester.setInfo(VeskUi::SET_BACKUP,
                           VeskUi::PrimitiveTypeWrapper<unsigned int>(partition))) {
        setErrMsg(Messages::BACKUP_FAILED, requester.getErrorCode());
        return;
    }

    VeskUi::EFIConfFile file(backupPath.c_str());
    VeskUi::EFIConfFile::EFIConfFileHeader header;
    std::string version;
    file.getFileHeader(header, version);

    const std::string name = (named ? "Partition" + std::to_string(partition) : "BIOS") + "_" +
                             formatDate(header.saveTime, "") + "_" + formatVersion(version) +
                             FILE_EXTENSION;
    // Not escaped here: the skeleton escapes the link for its script.
    putReadyText("filepath", DOWNLOAD_LINK + name);
    putText("onload_function", "downloadFunction()");
}

std::string AbstractBackupRestorePage::formatDate(unsigned int saveTime,
                                                  const std::string& separator) {
    const std::time_t time = saveTime;
    const std::tm date = *std::localtime(&time);
    return std::to_string(1900 + date.tm_year) + separator + twoDigits(date.tm_mon + 1) +
           separator + twoDigits(date.tm_mday);
}

void AbstractBackupRestorePage::traceText(int number, const std::string& detail) {
    trace.putLog(0, libraryText(number, detail.c_str()).c_str());
}

void AbstractBackupRestorePage::traceSystemError(const std::string& detail, int systemError) {
    trace.putLog(
        0, libraryText(LibraryTexts::SYSTEM_CALL_FAILURE, detail.c_str(), systemError).c_str());
}

void AbstractBackupRestorePage::reportUnavailable(const std::string& subject) {
    traceText(LibraryTexts::UNAVAILABLE, subject);
    reportError(libraryText(LibraryTexts::UNAVAILABLE, subject.c_str()));
}

void AbstractBackupRestorePage::putText(const std::string& name, const std::string& text) {
    insertComponent(componentMap, name, std::make_unique<TextString>(text));
}

void AbstractBackupRestorePage::putReadyText(const std::string& name, const std::string& text) {
    insertComponent(componentMap, name, std::make_unique<TextString>(text, false, true));
}

void AbstractBackupRestorePage::putHiddenField(const std::string& name, const std::string& field,
                                               const std::string& value) {
    insertComponent(componentMap, name, std::make_unique<HiddenField>(field, value, FORM_NAME));
}

void AbstractBackupRestorePage::putFileSelector() {
    insertComponent(componentMap, "filename",
                    std::make_unique<SelectFile>("filename", "", FORM_NAME, 70, 0));
}

void AbstractBackupRestorePage::putUploadButton() {
    insertComponent(componentMap, "install",
                    std::make_unique<Button>("install", messageMgr.getString(Captions::UPLOAD),
                                             FORM_NAME, 0, "\"uploadFunction()\"", false));
}

void AbstractBackupRestorePage::addToRow(HTMLItem& row, const std::string& name,
                                         std::unique_ptr<HTMLComponent> component) {
    row.add(name, component.get());
    static_cast<void>(component.release());
}

}  // namespace VeskLib::Gui
