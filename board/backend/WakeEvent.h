#pragma once

namespace VeskLib::Board {

// Lets any thread wake one that polls. A signal that comes before the poll is not lost.
class WakeEvent {
public:
    // Throws std::system_error when there is no descriptor for it.
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
