#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace VeskLib::Test {

using Environment = std::map<std::string, std::string>;

// The source of a child's standard input.
enum class InputKind {
    PIPE,    // `input` through a pipe, which is closed after it
    FILE,    // `input` in an unnamed file
    CLOSED,  // no standard input
};

struct ChildSetup {
    // Set in the child. The child does not inherit the CGI variables of the test process.
    Environment environment;
    std::string input;
    InputKind inputKind = InputKind::PIPE;
};

struct ChildResult {
    int exitStatus = -1;  // -1 if a signal ended the child
    int signal = 0;       // 0 if it exited
    std::string output;
    std::string errors;
};

// A child process that runs a function of the test. It is killed if it exceeds a time limit, which
// is far longer than any test needs, or if it still runs when the object is destroyed.
class ChildProcess {
public:
    // Starts a child that exits with the result of `work`. An exception thrown by `work` aborts the
    // child. Throws std::runtime_error if the child cannot be started.
    explicit ChildProcess(const std::function<int()>& work, const ChildSetup& setup = {});
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    // Waits for a line of output and returns it without its line break. If the child closes its
    // outputs or the time limit passes first, returns the remaining output.
    std::string readLine();

    // Sends SIGKILL to the child.
    void kill();

    // Waits until the child ends. The output excludes the lines that readLine() returned.
    ChildResult wait();

private:
    void prepareInput(const ChildSetup& setup);
    [[noreturn]] void runChild(const std::function<int()>& work, const ChildSetup& setup);
    bool exchange();
    void feed();
    void reap();

    pid_t process = -1;
    int inputEnds[2] = {-1, -1};
    int outputEnds[2] = {-1, -1};
    int errorEnds[2] = {-1, -1};
    std::string input;
    ChildResult result;
};

// Runs `work` in a child process and waits until it ends.
ChildResult runInChild(const std::function<int()>& work, const ChildSetup& setup = {});

// Runs a program, given by its path and its arguments, and waits until it ends. The exit status is
// 127 if the program cannot be started.
ChildResult runProgram(const std::vector<std::string>& command, const ChildSetup& setup = {});

}  // namespace VeskLib::Test
