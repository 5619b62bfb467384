#pragma once

#include <sys/types.h>

#include <functional>
#include <map>
#include <string>
#include <vector>

namespace VeskLib::Test {

using Environment = std::map<std::string, std::string>;

// Where a child's standard input comes from.
enum class InputKind {
    PIPE,    // `input` through a pipe that is closed behind it
    FILE,    // `input` in an unnamed file
    CLOSED,  // there is none
};

struct ChildSetup {
    // Set in the child. CGI variables of the test's own process are not inherited.
    Environment environment;
    std::string input;
    InputKind inputKind = InputKind::PIPE;
};

struct ChildResult {
    int exitStatus = -1;  // -1 when a signal ended the child
    int signal = 0;       // 0 when it exited
    std::string output;
    std::string errors;
};

// A child process that runs a function of the test's own. A child that outlives the time limit,
// which is far above what any test needs, is killed, and so is one that is still there when the
// object goes.
class ChildProcess {
public:
    // The result of `work` is the child's exit status; an exception that leaves it aborts the
    // child.
    explicit ChildProcess(const std::function<int()>& work, const ChildSetup& setup = {});
    ChildProcess(const ChildProcess&) = delete;
    ChildProcess& operator=(const ChildProcess&) = delete;
    ~ChildProcess();

    // The next line that the child prints, without its end; what there is when the child ends.
    std::string readLine();

    // Kills the child at once.
    void kill();

    // Waits for the child's end. The output does not hold what readLine() gave.
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

// Runs `work` in a child process and waits for its end.
ChildResult runInChild(const std::function<int()>& work, const ChildSetup& setup = {});

// Runs a program: `command` is its path and its arguments.
ChildResult runProgram(const std::vector<std::string>& command, const ChildSetup& setup = {});

}  // namespace VeskLib::Test
