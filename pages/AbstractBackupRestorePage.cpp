#include "pages/AbstractBackupRestorePage.h"

#include "data/PrimitiveTypeWrapper.h"
#include "data/requestNumbers.h"
#include "html/componentMaps.h"

#include <VeskLib/Gui/Button.h>
#include <VeskLib/Gui/HiddenField.h>
#include <VeskLib/Gui/SelectFile.h>
#include <VeskLib/Gui/TextString.h>
#include <VeskLib/LockedFile.h>
#include <VeskLib/PException.h>
#include <VeskLib/VeskUi/EFIConfFile.h>
#include <VeskLib/lmsg_getmsg.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdint>
#include <cstdio>
#include <ctime>

namespace VeskLib::Gui {

namespace {

const std::size_t MESSAGE_SIZE = 256;
const mode_t BACKUP_FILE_MODE = 0666;  // less the process's umask
const char* const DOWNLOAD_LINK = "/common/download.cgi?functionID=5&filename=";

const unsigned int LARGEST_UPLOAD = 393216;  // 384 KiB

std::string twoDigits(int number) {
    return (number < 10 ? "0" : "") + std::to_string(number);
}

// The version as it stands in a download's name.
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

const char* const AbstractBackupRestorePage::FILE_EXTENSION = ".dat";
const char* const AbstractBackupRestorePage::FORM_TARGET = "/maintenance/efi_backup_restore.cgi";
const char* const AbstractBackupRestorePage::FORM_NAME = "form_name";

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
        case 1047:
            messageId = 250;
            break;
        case 1539:
            messageId = 64;
            break;
        case 1549:
            messageId = 73;
            break;
        case 1551:
            messageId = 353;
            break;
        default:
            break;
    }
    addNotice(messageMgr.getMessage(messageId, errorCode));
}

void AbstractBackupRestorePage::upload(std::string& stagingPath, std::string& lockPath) {
    if (!checkUpload()) {
        return;
    }
    std::unique_ptr<LockedFile> lock;
    try {
        lock = std::make_unique<LockedFile>(lockPath);
    } catch (const PException& exception) {
        traceText(20003, "AbstractBackupRestorePage::upload");
        addNotice(messageMgr.getMessage(45, exception.getExceptionDetail()));
        return;
    }
    try {
        moveUpload(stagingPath);
    } catch (const PException& exception) {
        lock.reset();
        traceText(20003, "AbstractBackupRestorePage::installImage");
        setErrMsg(30, exception.getExceptionDetail());
    }
}

bool AbstractBackupRestorePage::checkUpload() {
    const unsigned int size = formInfo.getUploadFileSize();
    if (size == 0) {
        traceText(20003, "Uploading BIOS Conf.(File Size=0)");
        addNotice(messageMgr.getMessage(33, 1028));
        return false;
    }
    if (size > LARGEST_UPLOAD) {
        traceText(20020,
                  ("AbstractBackupRestorePage::upload: Illegal file size:" + std::to_string(size))
                      .c_str());
        addNotice(messageMgr.getMessage(63, 1028));
        return false;
    }
    const std::string name = formInfo.getUploadFileName();
    const auto extension = static_cast<std::uint32_t>(name.rfind(FILE_EXTENSION));
    // Both sides wrap at 32 bits. A name of three characters therefore passes: "not found" and
    // its length minus 4 are the same number. Boards have always taken such names.
    if (extension != static_cast<std::uint32_t>(name.size()) - 4U) {
        traceText(20020, "AbstractBackupRestorePage::upload: Illegal file extension");
        addNotice(messageMgr.getMessage(63, 1026));
        return false;
    }
    return true;
}

void AbstractBackupRestorePage::moveUpload(const std::string& stagingPath) {
    const std::string temporaryPath = formInfo.getUploadFilePath();
    if (std::rename(temporaryPath.c_str(), stagingPath.c_str()) != 0) {
        const int systemError = errno;
        traceText(
            20003,
            ("Renaming (errno:" + std::to_string(systemError) + ") " + temporaryPath).c_str());
        addNotice(messageMgr.getMessage(45, 1043));
    }
}

void AbstractBackupRestorePage::restoreUploadedFile(
    VeskUi::PrimitiveTypeArray<unsigned char>& request, bool& /*finished*/, int /*function*/) {
    if (requester.setInfo(VeskUi::SET_RESTORE, request)) {
        addNotice(messageMgr.getMessage(70, 0));
    } else {
        setErrMsg(71, requester.getErrorCode());
    }
}

void AbstractBackupRestorePage::discardUploadedFile(std::string& stagingPath,
                                                    std::string& lockPath) {
    const LockedFile lock(lockPath);
    if (std::remove(stagingPath.c_str()) != 0) {
        const int systemError = errno;
        traceSystemError(("remove(" + stagingPath + ")").c_str(), systemError);
    }
}

void AbstractBackupRestorePage::backup(unsigned int partition, std::string& backupPath,
                                       bool named) {
    const int descriptor = creat(backupPath.c_str(), BACKUP_FILE_MODE);
    if (descriptor < 0) {
        // Only traced, on purpose: whether the backup can be written is for the back-end to say.
        traceSystemError("EFIBackupPage::backup()::create", errno);
    }
    close(descriptor);  // also when it is -1

    if (!requester.setInfo(VeskUi::SET_BACKUP,
                           VeskUi::PrimitiveTypeWrapper<unsigned int>(partition))) {
        setErrMsg(72, requester.getErrorCode());
        return;
    }

    VeskUi::EFIConfFile file(backupPath.c_str());
    VeskUi::EFIConfFile::EFIConfFileHeader header;
    std::string version;
    file.getFileHeader(header, version);

    const std::string name = (named ? "Partition" + std::to_string(partition) : "BIOS") + "_" +
                             formatDate(header.saveTime, "") + "_" + formatVersion(version) +
                             FILE_EXTENSION;
    // The link is used in a script, where the skeleton makes it safe; it is not escaped here.
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

void AbstractBackupRestorePage::traceText(int number, const char* detail) {
    char text[MESSAGE_SIZE];
    trace.putLog(0, lmsg_getmsg(number, text, detail));
}

void AbstractBackupRestorePage::traceSystemError(const char* detail, int systemError) {
    char text[MESSAGE_SIZE];
    trace.putLog(0, lmsg_getmsg(20011, text, detail, systemError));
}

void AbstractBackupRestorePage::reportUnreadable(const char* subject) {
    traceText(107, subject);
    char text[MESSAGE_SIZE];
    reportError(lmsg_getmsg(107, text, subject));
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
                    std::make_unique<Button>("install", messageMgr.getString(499), FORM_NAME, 0,
                                             "\"uploadFunction()\"", false));
}

void AbstractBackupRestorePage::addToRow(HTMLItem& row, const std::string& name,
                                         std::unique_ptr<HTMLComponent> component) {
    row.add(name, component.get());
    static_cast<void>(component.release());
}

}  // namespace VeskLib::Gui
