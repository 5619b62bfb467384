// Runs a command and writes its peak resident set size, in KiB, to the file given as the first
// argument. It is a program of its own because a process inherits the peak of its parent, which for
// an interpreter is high.

#include <sys/resource.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstdio>

int main(int argumentCount, char** arguments) {
    if (argumentCount < 3) {
        return 2;
    }
    const pid_t child = fork();
    if (child == 0) {
        execv(arguments[2], arguments + 2);
        _exit(127);
    }
    int status = 0;
    struct rusage usage = {};
    if (wait4(child, &status, 0, &usage) != child) {
        return 1;
    }
    std::FILE* const file = std::fopen(arguments[1], "w");
    if (file == nullptr || std::fprintf(file, "%ld\n", usage.ru_maxrss) < 0) {
        return 1;
    }
    return std::fclose(file) == 0 && WIFEXITED(status) ? WEXITSTATUS(status) : 1;
}
