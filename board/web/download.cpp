#include "board/web/DownloadName.h"
#include "board/web/WebProgram.h"
#include "board/web/webCaptions.h"
#include "platform/host/base/SystemPath.h"
#include "platform/host/storage/ConfigurationFile.h"
#include "platform/host/storage/files.h"

#include <VeskLib/getCGIPath.h>
#include <VeskLib/trace/VeskTrace.h>

#include <cerrno>
#include <iostream>

namespace VeskLib::Board {

namespace {

const char* const BACKUP_DOWNLOAD = "5";  // the only function that there is a download for
const int BACKUP_FUNCTION = 105;

void traceMissingBackup(const std::string& path, const char* reason, int systemError) {
    const std::string text =
        "Download: " + path + " " + reason +
        (systemError == 0 ? "" : " (errno:" + std::to_string(systemError) + ")");
    trace::VeskTrace(1, 3, 3).putLog(0, text.c_str());
}

Host::Session requireBackupRight() {
    Host::Session session;
    if (!findRequestSession(session)) {
        throw Host::makeLoginPage();
    }
    if (!mayUse(session, BACKUP_FUNCTION)) {
        throw makeRefusal(403, DOWNLOAD_NOT_ALLOWED);
    }
    return session;
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

// The session's backup, whole. The name must be the backup's own: the link of an earlier backup
// never delivers the bytes of a later one.
std::vector<unsigned char> readBackup(const Host::Session& session, const DownloadName& name) {
    const std::string path = getCGIPath(Host::BACKUP_FILE) + session.identifier;
    std::vector<unsigned char> bytes;
    if (!Host::readFile(path, Host::LARGEST_CONFIGURATION_FILE, bytes)) {
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

void handleDownload(const Gui::FormInfo& form, Host::Response& response) {
    const Host::Session session = requireBackupRight();
    const DownloadName name = readName(form);
    const std::vector<unsigned char> bytes = readBackup(session, name);
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
