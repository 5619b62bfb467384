#pragma once

#include <sys/types.h>

#include <csignal>
#include <string>
#include <vector>

namespace VeskLib::Test {

// The real daemon as a process of its own.
class BackendProcess {
public:
    explicit BackendProcess(const std::vector<std::string>& arguments);

    // On a root, with a board description file; takes the orders of boardctl.
    BackendProcess(const std::string& root, const std::string& boardFile);
    BackendProcess(const BackendProcess&) = delete;
    BackendProcess& operator=(const BackendProcess&) = delete;

    // Kills the daemon when it still runs.
    ~BackendProcess();

    // Waits for the line "ready". Returns false if the daemon ended instead, or is not ready in
    // time.
    bool waitUntilReady();

    // Sends a signal and does not wait for anything.
    void signal(int number) const;

    // Sends a signal and waits for the end: the exit status, or minus the signal that ended it.
    int stop(int signal = SIGTERM);

    // Waits for the end without a signal. Kills a daemon that does not end in time, and fails the
    // test.
    int waitForEnd();

    // What it wrote to standard error; known after its end.
    const std::string& errors() const { return errorText; }

private:
    void start(std::vector<std::string> arguments);

    pid_t process = -1;
    int output = -1;
    int errorOutput = -1;
    std::string errorText;
};

}  // namespace VeskLib::Test
