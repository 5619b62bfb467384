#pragma once

namespace VeskLib::Board {

// Turns SIGTERM and SIGINT into a descriptor that becomes readable. Must be created before any
// thread, so that all threads block the signals. From then on the process ignores SIGPIPE and
// SIGXFSZ, so that writing to a disconnected client or beyond the limit of a file's size fails with
// an error.
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
