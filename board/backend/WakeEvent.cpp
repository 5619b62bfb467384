#include "board/backend/WakeEvent.h"

#include <sys/eventfd.h>
#include <unistd.h>

#include <cerrno>
#include <system_error>

namespace VeskLib::Board {

WakeEvent::WakeEvent() : event(::eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK)) {
    if (event < 0) {
        throw std::system_error(errno, std::generic_category(), "cannot make an event");
    }
}

WakeEvent::~WakeEvent() {
    ::close(event);
}

void WakeEvent::signal() const {
    static_cast<void>(::eventfd_write(event, 1));
}

void WakeEvent::clear() const {
    eventfd_t count = 0;
    static_cast<void>(::eventfd_read(event, &count));
}

}  // namespace VeskLib::Board
