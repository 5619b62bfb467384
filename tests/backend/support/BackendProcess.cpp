#include "tests/backend/support/BackendProcess.h"

#include <fcntl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

namespace VeskLib::Test {

namespace {

// Reads until the other side ends, or until `end` is at the end of what was read.
std::string readUntil(int descriptor, const std::string& end) {
    std::string text;
    char c = 0;
    while (::read(descriptor, &c, 1) == 1) {
        text += c;
        if (!end.empty() && text.ends_with(end)) {
            break;
        }
    }
    return text;
}

}  // namespace

BackendProcess::BackendProcess(const std::vector<std::string>& arguments) {
    start(arguments);
}

BackendProcess::BackendProcess(const std::string& root, const std::string& boardFile) {
    start({"--root", root, "--board", boardFile});
}

BackendProcess::~BackendProcess() {
    if (process > 0) {
        stop(SIGKILL);
    }
    ::close(output);
    ::close(errorOutput);
}

bool BackendProcess::waitUntilReady() {
    return readUntil(output, "ready\n") == "ready\n";
}

int BackendProcess::stop(int signal) {
    ::kill(process, signal);
    return waitForEnd();
}

int BackendProcess::waitForEnd() {
    errorText += readUntil(errorOutput, "");
    int status = 0;
    while (::waitpid(process, &status, 0) < 0 && errno == EINTR) {
    }
    process = -1;
    return WIFEXITED(status) ? WEXITSTATUS(status) : -WTERMSIG(status);
}

void BackendProcess::start(std::vector<std::string> arguments) {
    arguments.insert(arguments.begin(), EFI_BACKEND);
    std::vector<char*> pointers;
    pointers.reserve(arguments.size() + 1);
    for (std::string& argument : arguments) {
        pointers.push_back(argument.data());
    }
    pointers.push_back(nullptr);
    int out[2] = {};
    int err[2] = {};
    if (::pipe2(out, O_CLOEXEC) != 0 || ::pipe2(err, O_CLOEXEC) != 0) {
        throw std::runtime_error("no pipe");
    }
    process = ::fork();
    if (process == 0) {
        ::dup2(out[1], STDOUT_FILENO);
        ::dup2(err[1], STDERR_FILENO);
        // Whoever starts the tests in the background has their children ignore it.
        ::signal(SIGINT, SIG_DFL);
        ::execv(pointers[0], pointers.data());
        ::_exit(127);
    }
    ::close(out[1]);
    ::close(err[1]);
    output = out[0];
    errorOutput = err[0];
}

}  // namespace VeskLib::Test
