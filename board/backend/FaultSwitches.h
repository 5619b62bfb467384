#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace VeskLib::Board {

// The faults of a running back-end that boardctl has asked for, for tests and demonstrations. All
// are off at the start. May be used by several threads at once.
class FaultSwitches {
public:
    // `allowed` must be true only for tests and demonstrations.
    explicit FaultSwitches(bool allowed = false) : allowed(allowed) {}

    bool areAllowed() const { return allowed; }

    // The fault of one request.
    struct Fault {
        bool refused = false;  // not carried out but answered with `errorCode`
        std::uint32_t errorCode = 0;
        // If set, the request is carried out, but only this many bytes of the reply are sent.
        std::optional<std::size_t> sentBytes;
    };

    // Returns the fault for a new request and counts it as used. Returns late if the fault is a
    // delay.
    Fault next(std::uint32_t requestNumber);

    // Ends all delays. Called when the back-end ends.
    void end();

    // The orders. Each applies to the next `times` requests.
    void refuse(std::uint32_t requestNumber, std::uint32_t errorCode, unsigned int times);
    void delay(int milliseconds, unsigned int times);
    void silence(unsigned int times);
    void tear(std::size_t replyBytes, unsigned int times);
    void reset();

    // Makes a partition appear running or not, whatever the board description says.
    void setRunning(unsigned int partition, bool isOn);

    // Returns true if the partition is running; `described` is the board description's value.
    bool isRunning(unsigned int partition, bool described) const;

    // Returns the orders that still apply, one line each; empty if there are none.
    std::string describe() const;

private:
    struct Refusals {
        std::uint32_t errorCode = 0;
        unsigned int times = 0;
    };

    const bool allowed;
    mutable std::mutex guard;
    std::condition_variable ending;
    bool ended = false;
    std::map<std::uint32_t, Refusals> refusals;
    int delayMilliseconds = 0;
    unsigned int delays = 0;
    unsigned int silences = 0;
    std::size_t tornBytes = 0;
    unsigned int tears = 0;
    std::map<unsigned int, bool> running;
};

}  // namespace VeskLib::Board
