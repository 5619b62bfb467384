#pragma once

namespace VeskLib::Board {

// Lets any thread wake one that polls. A signal before the poll is not lost.
class WakeEvent {
public:
    // Throws std::system_error if no descriptor is available.
    WakeEvent();
    WakeEvent(const WakeEvent&) = delete;
    WakeEvent& operator=(const WakeEvent&) = delete;
    ~WakeEvent();

    // Readable from signal() until clear().
    int descriptor() const { return event; }

    void signal() const;
    void clear() const;

private:
    int event;
};

}  // namespace VeskLib::Board
