// Measures processes from start to exit, a few runs of each in turn, so that noise affects all
// alike.
//
// Usage: measure ROUNDS < CASES > RESULT
//
// CASES are lines: "case NAME" begins a case, "program PATH" sets its program, "input PATH" its
// standard input (empty without it), and "env NAME=VALUE" adds a variable to its environment, which
// is empty otherwise. RESULT is a JSON object with a member for each case: the sorted times from
// start to exit and the sorted CPU times, in microseconds; and from a separate run, the peak
// resident memory in KiB and the number of system calls. If a program fails, the measurement exits
// with 1.

#include <fcntl.h>
#include <signal.h>
#include <spawn.h>
#include <sys/ptrace.h>
#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <algorithm>
#include <chrono>
#include <cstdlib>
#include <fstream>
#include <iostream>
#include <sstream>
#include <stdexcept>
#include <string>
#include <vector>

namespace {

const int BLOCK_RUNS = 5;

struct Case {
    std::string name;
    std::string program;
    std::string input = "/dev/null";
    std::vector<std::string> environment;
    std::vector<double> wallMicroseconds;
    std::vector<double> processorMicroseconds;
    long peakKilobytes = 0;
    long systemCalls = 0;
};

std::vector<Case> readCases(std::istream& stream) {
    std::vector<Case> cases;
    std::string line;
    while (std::getline(stream, line)) {
        const std::string word = line.substr(0, line.find(' '));
        const std::string rest = line.substr(std::min(line.size(), word.size() + 1));
        if (word == "case") {
            cases.emplace_back().name = rest;
        } else if (cases.empty()) {
            throw std::runtime_error("a line before the first case: " + line);
        } else if (word == "program") {
            cases.back().program = rest;
        } else if (word == "input") {
            cases.back().input = rest;
        } else if (word == "env") {
            cases.back().environment.push_back(rest);
        } else if (!word.empty()) {
            throw std::runtime_error("an unknown line: " + line);
        }
    }
    return cases;
}

std::vector<char*> pointersTo(std::vector<std::string>& texts) {
    std::vector<char*> pointers;
    for (std::string& text : texts) {
        pointers.push_back(text.data());
    }
    pointers.push_back(nullptr);
    return pointers;
}

void requireSuccess(const Case& measured, int status) {
    if (!WIFEXITED(status) || WEXITSTATUS(status) != 0) {
        throw std::runtime_error(measured.name + " failed");
    }
}

double microseconds(const timeval& time) {
    return static_cast<double>(time.tv_sec) * 1e6 + static_cast<double>(time.tv_usec);
}

void runOnce(Case& measured) {
    posix_spawn_file_actions_t files;
    posix_spawn_file_actions_init(&files);
    posix_spawn_file_actions_addopen(&files, STDIN_FILENO, measured.input.c_str(), O_RDONLY, 0);
    posix_spawn_file_actions_addopen(&files, STDOUT_FILENO, "/dev/null", O_WRONLY, 0);
    std::vector<std::string> words = {measured.program};
    const std::vector<char*> arguments = pointersTo(words);
    const std::vector<char*> environment = pointersTo(measured.environment);

    const auto start = std::chrono::steady_clock::now();
    pid_t child = 0;
    int status = 0;
    rusage usage = {};
    const int error = posix_spawn(&child, measured.program.c_str(), &files, nullptr,
                                  arguments.data(), environment.data());
    if (error != 0 || wait4(child, &status, 0, &usage) != child) {
        throw std::runtime_error(measured.name + " cannot be started");
    }
    const std::chrono::duration<double, std::micro> wall = std::chrono::steady_clock::now() - start;
    posix_spawn_file_actions_destroy(&files);
    requireSuccess(measured, status);
    measured.wallMicroseconds.push_back(wall.count());
    measured.processorMicroseconds.push_back(microseconds(usage.ru_utime) +
                                             microseconds(usage.ru_stime));
}

// Measures BLOCK_RUNS runs of a case, after one that is discarded, because the processor's caches
// still contained the previous program.
void runBlock(Case& measured) {
    for (int run = 0; run <= BLOCK_RUNS; ++run) {
        runOnce(measured);
        if (run == 0) {
            measured.wallMicroseconds.pop_back();
            measured.processorMicroseconds.pop_back();
        }
    }
}

long peakMemory(pid_t process) {
    std::ifstream status("/proc/" + std::to_string(process) + "/status");
    std::string line;
    while (std::getline(status, line)) {
        if (line.starts_with("VmHWM:")) {
            return std::strtol(line.c_str() + sizeof "VmHWM:", nullptr, 10);
        }
    }
    throw std::runtime_error("no peak memory in /proc");
}

[[noreturn]] void becomeTraced(Case& measured) {
    const int input = open(measured.input.c_str(), O_RDONLY);
    const int output = open("/dev/null", O_WRONLY);
    dup2(input, STDIN_FILENO);
    dup2(output, STDOUT_FILENO);
    std::vector<std::string> words = {measured.program};
    ptrace(PTRACE_TRACEME, 0, nullptr, nullptr);
    execve(measured.program.c_str(), pointersTo(words).data(),
           pointersTo(measured.environment).data());
    std::_Exit(127);
}

// Measures peak memory and system calls in a separate run, because this would disturb the times.
// Counts from the program's start on, including its execve().
void countOnce(Case& measured) {
    const pid_t child = fork();
    if (child == 0) {
        becomeTraced(measured);
    }
    int status = 0;
    waitpid(child, &status, 0);
    ptrace(PTRACE_SETOPTIONS, child, nullptr, PTRACE_O_TRACEEXIT | PTRACE_O_TRACESYSGOOD);
    long stops = 1;  // after execve()
    while (!WIFEXITED(status) && !WIFSIGNALED(status)) {
        int signalNumber = 0;
        if (WIFSTOPPED(status) && status >> 8 == (SIGTRAP | PTRACE_EVENT_EXIT << 8)) {
            measured.peakKilobytes = peakMemory(child);
        } else if (WIFSTOPPED(status) && WSTOPSIG(status) == (SIGTRAP | 0x80)) {
            ++stops;
        } else if (WIFSTOPPED(status) && WSTOPSIG(status) != SIGTRAP) {
            signalNumber = WSTOPSIG(status);
        }
        ptrace(PTRACE_SYSCALL, child, nullptr, signalNumber);
        waitpid(child, &status, 0);
    }
    requireSuccess(measured, status);
    // There are two stops for each call, except for execve(), which was entered before, and for the
    // last call, which never returns.
    measured.systemCalls = stops / 2 + 1;
}

void printList(const char* name, std::vector<double>& values) {
    std::sort(values.begin(), values.end());
    std::cout << '"' << name << "\": [";
    for (std::size_t i = 0; i < values.size(); ++i) {
        std::cout << (i == 0 ? "" : ", ") << values[i];
    }
    std::cout << "]";
}

void print(std::vector<Case>& cases) {
    std::cout << "{\n";
    for (Case& measured : cases) {
        std::cout << '"' << measured.name << "\": {";
        printList("wall", measured.wallMicroseconds);
        std::cout << ", ";
        printList("processor", measured.processorMicroseconds);
        std::cout << ", \"peakKilobytes\": " << measured.peakKilobytes
                  << ", \"systemCalls\": " << measured.systemCalls << '}'
                  << (&measured == &cases.back() ? "\n" : ",\n");
    }
    std::cout << "}\n";
}

int measureAll(int rounds) {
    std::vector<Case> cases = readCases(std::cin);
    for (Case& measured : cases) {
        countOnce(measured);
    }
    for (int round = 0; round < rounds; ++round) {
        for (Case& measured : cases) {
            runBlock(measured);
        }
    }
    print(cases);
    return std::cout.flush() ? 0 : 1;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    const int rounds = argumentCount == 2 ? std::atoi(arguments[1]) : 0;
    if (rounds < 1) {
        std::cerr << "Usage: measure ROUNDS < CASES > RESULT\n";
        return 2;
    }
    try {
        return measureAll(rounds);
    } catch (const std::exception& error) {
        std::cerr << "measure: " << error.what() << '\n';
        return 1;
    }
}
