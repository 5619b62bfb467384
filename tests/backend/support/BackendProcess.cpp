#include "tests/backend/support/BackendProcess.h"

#include "platform/host/channel/FrameStream.h"
#include "tests/backend/support/requests.h"

#include <fcntl.h>
#include <gtest/gtest.h>
#include <poll.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <stdexcept>

namespace VeskLib::Test {

namespace {

// Reads into `text` until end of file, or until `text` ends with a non-empty `end`. Returns false
// if neither happens in time.
bool readUntil(int descriptor, const std::string& end, std::string& text) {
    const Host::Deadline deadline(LONG);
    while (end.empty() || !text.ends_with(end)) {
        if (!Host::waitUntilReady(descriptor, POLLIN, deadline)) {
            return false;
        }
        char c = 0;
        if (::read(descriptor, &c, 1) != 1) {
            break;
        }
        text += c;
    }
    return true;
}

}  // namespace

BackendProcess::BackendProcess(const std::vector<std::string>& arguments) {
    start(arguments);
}

BackendProcess::BackendProcess(const std::string& root, const std::string& boardFile) {
    start({"--root", root, "--board", boardFile, "--allow-faults"});
}

BackendProcess::~BackendProcess() {
    if (process > 0) {
        stop(SIGKILL);
    }
    ::close(output);
    ::close(errorOutput);
}

bool BackendProcess::waitUntilReady() {
    std::string text;
    EXPECT_TRUE(readUntil(output, "ready\n", text)) << "the back-end is not ready in time";
    return text == "ready\n";
}

void BackendProcess::signal(int number) const {
    ::kill(process, number);
}

int BackendProcess::stop(int signal) {
    ::kill(process, signal);
    return waitForEnd();
}

int BackendProcess::waitForEnd() {
    if (!readUntil(errorOutput, "", errorText)) {
        ADD_FAILURE() << "the back-end does not end in time and is killed";
        ::kill(process, SIGKILL);
    }
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
        throw std::runtime_error("cannot create a pipe");
    }
    process = ::fork();
    if (process == 0) {
        ::dup2(out[1], STDOUT_FILENO);
        ::dup2(err[1], STDERR_FILENO);
        // Ignored by default if a shell started the tests in the background.
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
