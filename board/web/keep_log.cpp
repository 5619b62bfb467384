// Prevents a server's log from filling the disk.
//
// usage: keep_log FILE
//
// Appends the lines of standard input to FILE, with limited size, until the input ends.

#include "platform/host/storage/boundedLog.h"

#include <unistd.h>

#include <cerrno>
#include <exception>
#include <string>

namespace {

const int DONE = 0;
const int FAILED = 1;
const int MISUSED = 2;

// A longer line is written in pieces.
const std::size_t LONGEST_LINE = 16 * 1024;

// Writes the complete lines of `text` and removes them from it.
void writeLines(const char* path, std::string& text) {
    std::size_t end = text.rfind('\n') + 1;  // npos + 1 is 0
    if (end == 0 && text.size() >= LONGEST_LINE) {
        text += '\n';
        end = text.size();
    }
    if (end != 0) {
        VeskLib::Host::appendToLog(path, text.substr(0, end));
        text.erase(0, end);
    }
}

void keepLog(const char* path) {
    std::string text;
    char piece[4096];
    while (true) {
        const ssize_t count = read(STDIN_FILENO, piece, sizeof piece);
        if (count > 0) {
            text.append(piece, static_cast<std::size_t>(count));
            writeLines(path, text);
        } else if (count == 0 || errno != EINTR) {
            break;
        }
    }
    if (!text.empty()) {
        VeskLib::Host::appendToLog(path, text + '\n');
    }
}

}  // namespace

int main(int argc, char** argv) {
    if (argc != 2) {
        static const char USAGE[] = "usage: keep_log FILE\n";
        static_cast<void>(!write(STDERR_FILENO, USAGE, sizeof USAGE - 1));
        return MISUSED;
    }
    try {
        keepLog(argv[1]);
        return DONE;
    } catch (const std::exception&) {
        // Out of memory; the server will restart this program.
        return FAILED;
    }
}
