#include "platform/host/base/standardDescriptors.h"

#include <fcntl.h>
#include <poll.h>
#include <unistd.h>

#include <cstdlib>

namespace VeskLib::Host {

void occupyStandardDescriptors() {
    pollfd standard[] = {{STDIN_FILENO, 0, 0}, {STDOUT_FILENO, 0, 0}, {STDERR_FILENO, 0, 0}};
    if (poll(standard, sizeof standard / sizeof standard[0], 0) <= 0) {
        return;
    }
    for (const pollfd& each : standard) {
        // open() returns the lowest free number.
        if ((each.revents & POLLNVAL) != 0 &&
            open("/dev/null", each.fd == STDIN_FILENO ? O_WRONLY : O_RDONLY) != each.fd) {
            std::_Exit(EXIT_FAILURE);
        }
    }
}

}  // namespace VeskLib::Host
