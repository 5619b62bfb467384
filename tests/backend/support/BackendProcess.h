#pragma once

#include <sys/types.h>

#include <csignal>
#include <string>
#include <vector>

namespace VeskLib::Test {

// Runs the real daemon as a child process.
class BackendProcess {
public:
    explicit BackendProcess(const std::vector<std::string>& arguments);

    // Starts the daemon on a root, with a board description file; it accepts orders from boardctl.
    BackendProcess(const std::string& root, const std::string& boardFile);
    BackendProcess(const BackendProcess&) = delete;
    BackendProcess& operator=(const BackendProcess&) = delete;

    // Kills the daemon if it is still running.
    ~BackendProcess();

    // Waits for the line "ready". Returns false if the daemon exits instead or is not ready in
    // time.
    bool waitUntilReady();

    // Sends a signal without waiting for its effect.
    void signal(int number) const;

    // Sends a signal and waits for the daemon to exit. Returns its exit status, or minus the number
    // of the signal that killed it.
    int stop(int signal = SIGTERM);

    // The same without sending a signal. Kills a daemon that does not exit in time, and fails the
    // test.
    int waitForEnd();

    // Returns what the daemon wrote to standard error. Empty until it has exited.
    const std::string& errors() const { return errorText; }

private:
    void start(std::vector<std::string> arguments);

    pid_t process = -1;
    int output = -1;
    int errorOutput = -1;
    std::string errorText;
};

}  // namespace VeskLib::Test
