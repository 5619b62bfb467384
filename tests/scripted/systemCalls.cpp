#include "tests/scripted/systemCalls.h"

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

#include <sys/types.h>

#include <cerrno>
#include <cstdio>

// The linker's option --wrap redirects calls of creat() to __wrap_creat(), and calls of
// __real_creat() to the C library.
// NOLINTBEGIN(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
extern "C" {
int __real_creat(const char* path, mode_t mode);
int __real_close(int descriptor);
int __real_rename(const char* from, const char* to);
int __real_remove(const char* path);
int __wrap_creat(const char* path, mode_t mode);
int __wrap_creat64(const char* path, mode_t mode);
int __wrap_close(int descriptor);
int __wrap_rename(const char* from, const char* to);
int __wrap_remove(const char* path);
}

namespace VeskLib::Scripted {

namespace {

// Not part of the script, because it is still read after the script's destruction at exit.
bool systemCallsAreScripted = false;

int fail(int errorNumber) {
    errno = errorNumber;
    return -1;
}

}  // namespace

void scriptSystemCalls(bool scripted) {
    systemCallsAreScripted = scripted;
}

}  // namespace VeskLib::Scripted

using namespace VeskLib::Scripted;

int __wrap_creat(const char* path, mode_t mode) {
    if (!systemCallsAreScripted) {
        return __real_creat(path, mode);
    }
    char octal[16];
    std::snprintf(octal, sizeof octal, "0%o", static_cast<unsigned int>(mode));
    record(std::string("creat ") + path + " " + octal);
    if (script().creatError != 0) {
        return fail(script().creatError);
    }
    return script().realFiles ? __real_creat(path, mode) : script().descriptor;
}

// The C library's headers map creat() to this where file offsets are wider than pointers.
int __wrap_creat64(const char* path, mode_t mode) {
    return __wrap_creat(path, mode);
}

int __wrap_close(int descriptor) {
    if (!systemCallsAreScripted) {
        return __real_close(descriptor);
    }
    record("close " + std::to_string(descriptor));
    if (script().closeError != 0) {
        return fail(script().closeError);
    }
    if (descriptor < 0) {
        return fail(EBADF);
    }
    return script().realFiles ? __real_close(descriptor) : 0;
}

int __wrap_rename(const char* from, const char* to) {
    if (!systemCallsAreScripted) {
        return __real_rename(from, to);
    }
    record(std::string("rename ") + from + " " + to);
    if (script().renameError != 0) {
        return fail(script().renameError);
    }
    return script().realFiles ? __real_rename(from, to) : 0;
}

int __wrap_remove(const char* path) {
    if (!systemCallsAreScripted) {
        return __real_remove(path);
    }
    record(std::string("remove ") + path);
    if (script().removeError != 0) {
        return fail(script().removeError);
    }
    return script().realFiles ? __real_remove(path) : 0;
}
// NOLINTEND(bugprone-reserved-identifier,cert-dcl37-c,cert-dcl51-cpp)
