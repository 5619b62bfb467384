#include "client/command/localFile.h"

#include "board/inspector/FileReport.h"
#include "client/Failure.h"

namespace Efictl {

LocalFile readLocalFile(const std::string& path) {
    VeskLib::Board::FileReport report = VeskLib::Board::inspect(path);
    if (report.verdict != VeskLib::Board::FileReport::Verdict::USABLE) {
        throw Failure(ExitCode::FAILED,
                      path + " is " + nameOf(report.verdict) + ": " + report.reason + ".");
    }
    return {path, report.sha256, std::move(report.file)};
}

}  // namespace Efictl
