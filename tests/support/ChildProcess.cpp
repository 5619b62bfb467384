#include "tests/support/ChildProcess.h"

#include <fcntl.h>
#include <poll.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <chrono>
#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string_view>

namespace VeskLib::Test {

namespace {

using Clock = std::chrono::steady_clock;

// Far longer than any test needs, even under valgrind on a busy machine.
const std::chrono::seconds TIME_LIMIT(120);
const int POLL_MILLISECONDS = 100;
const int PROGRAM_NOT_STARTED = 127;

void makePipe(int (&ends)[2]) {
    if (::pipe2(ends, O_CLOEXEC) != 0) {
        throw std::runtime_error("cannot create a pipe for a child process");
    }
}

void closeEnd(int& descriptor) {
    if (descriptor >= 0) {
        ::close(descriptor);
        descriptor = -1;
    }
}

bool isRequestVariable(std::string_view name) {
    return name.starts_with("HTTP_") || name == "REQUEST_METHOD" || name == "QUERY_STRING" ||
           name == "CONTENT_LENGTH" || name == "CONTENT_TYPE";
}

void setEnvironment(const Environment& environment) {
    std::vector<std::string> inherited;
    for (char** entry = environ; *entry != nullptr; ++entry) {
        const std::string_view text = *entry;
        const std::string_view name = text.substr(0, text.find('='));
        if (isRequestVariable(name)) {
            inherited.emplace_back(name);
        }
    }
    for (const std::string& name : inherited) {
        ::unsetenv(name.c_str());
    }
    for (const auto& [name, value] : environment) {
        ::setenv(name.c_str(), value.c_str(), 1);
    }
}

// Returns the emulator command for programs built for another processor; empty in a native build.
std::vector<std::string> emulator() {
    std::vector<std::string> words;
#ifdef EMULATOR
    std::istringstream text(EMULATOR);
    for (std::string word; text >> word;) {
        words.push_back(word);
    }
#endif
    return words;
}

// Appends the available bytes to `text`. Closes the descriptor at the end of the file and on
// errors.
void collect(int& descriptor, std::string& text) {
    char buffer[65536];
    const ssize_t count = ::read(descriptor, buffer, sizeof buffer);
    if (count > 0) {
        text.append(buffer, static_cast<std::size_t>(count));
    } else if (count == 0 || errno != EINTR) {
        closeEnd(descriptor);
    }
}

}  // namespace

ChildProcess::ChildProcess(const std::function<int()>& work, const ChildSetup& setup) {
    // A child that does not read its input must not end the test.
    std::signal(SIGPIPE, SIG_IGN);
    prepareInput(setup);
    makePipe(outputEnds);
    makePipe(errorEnds);
    std::cout.flush();
    std::fflush(nullptr);
    process = ::fork();
    if (process < 0) {
        throw std::runtime_error("cannot start a child process");
    }
    if (process == 0) {
        runChild(work, setup);
    }
    closeEnd(inputEnds[0]);
    closeEnd(outputEnds[1]);
    closeEnd(errorEnds[1]);
}

ChildProcess::~ChildProcess() {
    kill();
    reap();
    for (int* ends : {inputEnds, outputEnds, errorEnds}) {
        closeEnd(ends[0]);
        closeEnd(ends[1]);
    }
}

void ChildProcess::prepareInput(const ChildSetup& setup) {
    switch (setup.inputKind) {
        case InputKind::PIPE:
            makePipe(inputEnds);
            ::fcntl(inputEnds[1], F_SETFL, O_NONBLOCK);
            input = setup.input;
            break;
        case InputKind::FILE: {
            inputEnds[0] = ::memfd_create("input", MFD_CLOEXEC);
            const auto size = static_cast<ssize_t>(setup.input.size());
            if (::write(inputEnds[0], setup.input.data(), setup.input.size()) != size ||
                ::lseek(inputEnds[0], 0, SEEK_SET) != 0) {
                throw std::runtime_error("cannot write the input file of a child process");
            }
            break;
        }
        case InputKind::CLOSED:
            break;
    }
}

void ChildProcess::runChild(const std::function<int()>& work, const ChildSetup& setup) {
    std::signal(SIGPIPE, SIG_DFL);
    // If the test is killed, its children are killed as well.
    ::prctl(PR_SET_PDEATHSIG, SIGKILL);
    if (inputEnds[0] >= 0) {
        ::dup2(inputEnds[0], STDIN_FILENO);
    } else {
        ::close(STDIN_FILENO);
    }
    ::dup2(outputEnds[1], STDOUT_FILENO);
    ::dup2(errorEnds[1], STDERR_FILENO);
    for (int* ends : {inputEnds, outputEnds, errorEnds}) {
        closeEnd(ends[0]);
        closeEnd(ends[1]);
    }
    setEnvironment(setup.environment);
    // An exception aborts the child: it must not unwind into the child's copy of the test.
    const auto run = [&work]() noexcept { return work(); };
    const int status = run();
    std::cout.flush();
    // A normal exit, so that leak checks and coverage counters include the child.
    std::exit(status);
}

// Transfers data for up to POLL_MILLISECONDS. Returns false once the child has closed its outputs.
bool ChildProcess::exchange() {
    if (outputEnds[0] < 0 && errorEnds[0] < 0) {
        return false;
    }
    pollfd waited[] = {{outputEnds[0], POLLIN, 0},
                       {errorEnds[0], POLLIN, 0},
                       {inputEnds[1], POLLOUT, 0}};  // poll() ignores negative descriptors
    if (::poll(waited, 3, POLL_MILLISECONDS) > 0) {
        if (waited[0].revents != 0) {
            collect(outputEnds[0], result.output);
        }
        if (waited[1].revents != 0) {
            collect(errorEnds[0], result.errors);
        }
    }
    feed();
    return true;
}

void ChildProcess::feed() {
    while (inputEnds[1] >= 0 && !input.empty()) {
        const ssize_t count = ::write(inputEnds[1], input.data(), input.size());
        if (count > 0) {
            input.erase(0, static_cast<std::size_t>(count));
        } else if (errno == EAGAIN) {
            return;
        } else if (errno != EINTR) {
            input.clear();
        }
    }
    closeEnd(inputEnds[1]);
}

std::string ChildProcess::readLine() {
    const Clock::time_point end = Clock::now() + TIME_LIMIT;
    while (result.output.find('\n') == std::string::npos && Clock::now() < end && exchange()) {
    }
    const std::size_t length = result.output.find('\n');
    std::string line = result.output.substr(0, length);
    result.output.erase(0, length == std::string::npos ? length : length + 1);
    return line;
}

void ChildProcess::kill() {
    if (process > 0) {
        ::kill(process, SIGKILL);
    }
}

ChildResult ChildProcess::wait() {
    const Clock::time_point end = Clock::now() + TIME_LIMIT;
    while (exchange()) {
        if (Clock::now() >= end) {
            result.errors += "\nThe child process was killed: it took too long.";
            kill();
            break;
        }
    }
    closeEnd(inputEnds[1]);
    reap();
    return result;
}

void ChildProcess::reap() {
    if (process <= 0) {
        return;
    }
    const Clock::time_point end = Clock::now() + TIME_LIMIT;
    int status = 0;
    while (::waitpid(process, &status, WNOHANG) == 0) {
        if (Clock::now() >= end) {
            kill();
        }
        ::poll(nullptr, 0, 1);
    }
    process = -1;
    if (WIFEXITED(status)) {
        result.exitStatus = WEXITSTATUS(status);
    } else {
        result.signal = WTERMSIG(status);
    }
}

ChildResult runInChild(const std::function<int()>& work, const ChildSetup& setup) {
    return ChildProcess(work, setup).wait();
}

ChildResult runProgram(const std::vector<std::string>& command, const ChildSetup& setup) {
    return runInChild(
        [&command] {
            std::vector<std::string> words = emulator();
            words.insert(words.end(), command.begin(), command.end());
            std::vector<char*> arguments;
            arguments.reserve(words.size() + 1);
            for (std::string& word : words) {
                arguments.push_back(word.data());
            }
            arguments.push_back(nullptr);
            ::execvp(arguments.front(), arguments.data());
            std::cerr << command.front() << " cannot be started\n";
            return PROGRAM_NOT_STARTED;
        },
        setup);
}

}  // namespace VeskLib::Test
