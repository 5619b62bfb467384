// A complete request to the program, with its body on standard input. The first three lines of an
// input are the content type, the announced length ("LENGTH" is replaced by that of the body) and
// the query string; the rest is the body.

#include <VeskLib/Gui/FormInfo.h>

#include "platform/host/web/FormLimits.h"
#include "tests/fuzz/support/environment.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

#include <VeskLib/PException.h>

#include <sys/mman.h>
#include <sys/stat.h>
#include <unistd.h>

using namespace VeskLib;
namespace FormLimits = Host::FormLimits;

namespace {

// Makes `body` the content of standard input.
void setInput(std::string_view body) {
    static const int MEMORY = ::memfd_create("body", 0);
    static const bool INSTALLED = ::dup2(MEMORY, STDIN_FILENO) == STDIN_FILENO;
    Fuzz::require(
        INSTALLED && ::ftruncate(MEMORY, 0) == 0 &&
            ::pwrite(MEMORY, body.data(), body.size(), 0) == static_cast<ssize_t>(body.size()) &&
            ::lseek(MEMORY, 0, SEEK_SET) == 0,
        "standard input can be set");
}

void requireNothing(const Gui::FormInfo& form) {
    std::string value = "former";
    Fuzz::require(!form.getFormData("a", value) && value == "former" &&
                      form.getUploadFileName().empty() && form.getUploadFilePath().empty() &&
                      form.getUploadFileSize() == 0,
                  "a rejected or terminated form is empty");
}

// Requires that the uploaded file, if any, has the size that the form returns. Returns its path.
std::string requireUpload(const Gui::FormInfo& form, std::size_t bodySize) {
    Fuzz::require(form.getUploadFileName().size() <= FormLimits::FILE_NAME_LENGTH,
                  "a file name is within its limit");
    Fuzz::require(form.getUploadFileSize() <= bodySize, "a file is no larger than its body");
    const std::string path = form.getUploadFilePath();
    struct stat status = {};
    Fuzz::require(
        path.empty() ||
            (::lstat(path.c_str(), &status) == 0 && status.st_size == form.getUploadFileSize() &&
             status.st_size <= off_t{FormLimits::FILE_LENGTH} && (status.st_mode & 0777) == 0600),
        "an uploaded file is complete and accessible only to its owner");
    return path;
}

void requireFields(const Gui::FormInfo& form) {
    for (const char* name : {"a", "b", "", "functionID"}) {
        std::string value;
        Fuzz::require(!form.getFormData(name, value) || value.size() <= FormLimits::VALUE_LENGTH,
                      "a value is within its limit");
    }
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    Fuzz::useTemporaryRoot();
    const std::string input = Fuzz::textOf(data, size);
    std::string_view body = input;
    Fuzz::setVariable("REQUEST_METHOD", "POST");
    Fuzz::setVariable("CONTENT_TYPE", Fuzz::takeLine(body));
    const std::string length = Fuzz::takeLine(body);
    Fuzz::setVariable("QUERY_STRING", Fuzz::takeLine(body));
    Fuzz::setVariable("CONTENT_LENGTH",
                      Fuzz::replaceAll(length, "LENGTH", std::to_string(body.size())));
    setInput(body);

    Gui::FormInfo form;
    std::string path;
    try {
        requireFields(form);
        path = requireUpload(form, body.size());
    } catch (const PException&) {
        requireNothing(form);
    }
    form.terminate();
    requireNothing(form);
    Fuzz::require(path.empty() || ::access(path.c_str(), F_OK) != 0,
                  "a file that was not moved is removed at the end");
    return 0;
}
