#pragma once

namespace VeskLib::Board {

// Turns SIGTERM and SIGINT into a descriptor that becomes readable. Made before any thread is, so
// that every thread leaves the signals alone. SIGPIPE and SIGXFSZ are ignored from then on: a gone
// client or a full disk is an error where it happens.
class StopSignal {
public:
    StopSignal();
    StopSignal(const StopSignal&) = delete;
    StopSignal& operator=(const StopSignal&) = delete;
    ~StopSignal();

    int descriptor() const { return signals; }

private:
    int signals;
};

}  // namespace VeskLib::Board
