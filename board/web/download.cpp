#include "board/web/DownloadName.h"
#include "board/web/WebProgram.h"
#include "board/web/webCaptions.h"
#include "platform/host/audit/AuditLog.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "platform/host/storage/files.h"
#include "platform/host/web/requestAudit.h"
#include "platform/host/web/requestChecks.h"

#include <VeskLib/getCGIPath.h>
#include <VeskLib/trace/VeskTrace.h>

#include <cerrno>
#include <iostream>

namespace VeskLib::Board {

namespace {

const char* const BACKUP_DOWNLOAD = "5";  // the only function with a download

void traceMissingBackup(const std::string& path, const char* reason, int systemError) {
    const std::string text =
        "Download: " + path + " " + reason +
        (systemError == 0 ? "" : " (errno:" + std::to_string(systemError) + ")");
    trace::VeskTrace(1, 3, 3).putLog(0, text.c_str());
}

const Host::Session& requireBackupRight() {
    const Host::RequestSession* const user = findRequestSession();
    if (user == nullptr) {
        throw Host::makeLoginPage();
    }
    if (!user->mayUse(Host::BACKUP_FUNCTION)) {
        Host::recordRefusedRight();
        throw makeRefusal(403, DOWNLOAD_NOT_ALLOWED);
    }
    return user->session;
}

DownloadName readName(const Gui::FormInfo& form) {
    std::string function;
    std::string name;
    if (!form.getFormData("functionID", function) || function != BACKUP_DOWNLOAD ||
        !form.getFormData("filename", name)) {
        throw makeRefusal(400, NOT_A_DOWNLOAD);
    }
    const std::optional<DownloadName> downloadName = DownloadName::parse(name);
    if (!downloadName) {
        throw makeRefusal(400, NOT_A_DOWNLOAD);
    }
    return *downloadName;
}

// Returns the bytes of the session's backup. The name must be that of the backup, so that the link
// of an earlier backup never delivers a later one.
std::vector<unsigned char> readBackup(const Host::Session& session, const DownloadName& name) {
    const std::string path = getCGIPath(Host::BACKUP_FILE) + session.identifier;
    std::vector<unsigned char> bytes;
    struct stat status = {};
    if (!Host::readOwnFile(path, Host::LARGEST_CONFIGURATION_FILE, bytes, status)) {
        traceMissingBackup(path, "cannot be read", errno);
        throw makeRefusal(404, NO_SUCH_BACKUP);
    }
    Host::ConfigurationFile file;
    if (!Host::decode(bytes, file)) {
        traceMissingBackup(path, "is not a configuration file", 0);
        throw makeRefusal(404, NO_SUCH_BACKUP);
    }
    if (!name.fits(file)) {
        throw makeRefusal(404, NO_SUCH_BACKUP);
    }
    return bytes;
}

// Called before anything is sent, because a download that cannot be recorded must not happen.
void recordDownload(const std::vector<unsigned char>& bytes) {
    Host::AuditEvent event = Host::makeAuditEvent("download");
    event.file = Host::auditedFile(bytes);
    event.result = "done";
    Host::record(event);
}

void handleDownload(const Gui::FormInfo& form, Host::Response& response) {
    const Host::Session& session = requireBackupRight();
    const DownloadName name = readName(form);
    const std::vector<unsigned char> bytes = readBackup(session, name);
    if (!Host::isHead()) {
        recordDownload(bytes);
    }
    response.setContentType("application/octet-stream");
    response.addHeader("Content-Disposition", name.contentDisposition());
    std::cout.write(reinterpret_cast<const char*>(bytes.data()),
                    static_cast<std::streamsize>(bytes.size()));
}

const WebProgram DOWNLOAD = {"GET, HEAD", Host::makeMethodPage, handleDownload};

}  // namespace

}  // namespace VeskLib::Board

int main() {
    return VeskLib::Board::runWebProgram(VeskLib::Board::DOWNLOAD);
}
