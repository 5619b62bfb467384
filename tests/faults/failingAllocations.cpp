// A preloaded library that makes a program's allocations fail. Environment variables:
//
// FAIL_ALLOCATION=N     the N-th allocation fails (from 1)
// FAIL_FROM_THEN_ON=1   all later allocations fail too
// ALLOCATION_COUNT=FILE at exit, writes the number of allocations before main() and the total
//                       number to this file

#include <dlfcn.h>
#include <fcntl.h>
#include <unistd.h>

#include <atomic>
#include <cerrno>
#include <cstdio>
#include <cstdlib>

extern "C" {

// The C library's own functions, which the replacements below call by these names.
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* memory, std::size_t size);
void* __libc_memalign(std::size_t alignment, std::size_t size);

}  // extern "C"

namespace {

std::atomic<unsigned long> allocations = 0;
unsigned long beforeMain = 0;

using Main = int (*)(int, char**, char**);
Main programsMain = nullptr;

// Set by the first allocation, which comes before any constructor of the program.
unsigned long failing = 0;
bool lasting = false;
std::atomic<bool> prepared = false;

void prepare() {
    const char* number = std::getenv("FAIL_ALLOCATION");
    failing = number == nullptr ? 0 : std::strtoul(number, nullptr, 10);
    lasting = std::getenv("FAIL_FROM_THEN_ON") != nullptr;
    prepared = true;
}

bool fails() {
    if (!prepared) {
        prepare();
    }
    const unsigned long number = ++allocations;
    const bool failed = failing != 0 && (number == failing || (lasting && number > failing));
    if (failed) {
        errno = ENOMEM;
    }
    return failed;
}

__attribute__((destructor)) void writeCount() {
    const char* path = std::getenv("ALLOCATION_COUNT");
    const int file = path == nullptr ? -1 : ::open(path, O_WRONLY | O_CREAT | O_TRUNC, 0600);
    if (file < 0) {
        return;
    }
    char text[64];
    const int size = std::snprintf(text, sizeof text, "%lu %lu\n", beforeMain, allocations.load());
    static_cast<void>(!::write(file, text, static_cast<std::size_t>(size)));
    ::close(file);
}

int enterMain(int argc, char** argv, char** environment) {
    beforeMain = allocations;
    return programsMain(argc, argv, environment);
}

}  // namespace

extern "C" {

// Called by a program's first instructions; runs the constructors and then `main`.
__attribute__((visibility("default"))) int __libc_start_main(Main main, int argc, char** argv,
                                                             void (*init)(), void (*fini)(),
                                                             void (*loaderFini)(), void* stackEnd) {
    using Start = int (*)(Main, int, char**, void (*)(), void (*)(), void (*)(), void*);
    programsMain = main;
    const auto start = reinterpret_cast<Start>(::dlsym(RTLD_NEXT, "__libc_start_main"));
    return start(enterMain, argc, argv, init, fini, loaderFini, stackEnd);
}

__attribute__((visibility("default"))) void* malloc(std::size_t size) {
    return fails() ? nullptr : __libc_malloc(size);
}

__attribute__((visibility("default"))) void* calloc(std::size_t count, std::size_t size) {
    return fails() ? nullptr : __libc_calloc(count, size);
}

__attribute__((visibility("default"))) void* realloc(void* memory, std::size_t size) {
    return fails() ? nullptr : __libc_realloc(memory, size);
}

__attribute__((visibility("default"))) void* aligned_alloc(std::size_t alignment,
                                                           std::size_t size) {
    return fails() ? nullptr : __libc_memalign(alignment, size);
}

__attribute__((visibility("default"))) int posix_memalign(void** memory, std::size_t alignment,
                                                          std::size_t size) {
    void* const made = fails() ? nullptr : __libc_memalign(alignment, size);
    if (made == nullptr) {
        return ENOMEM;
    }
    *memory = made;
    return 0;
}

}  // extern "C"
