#pragma once

#include <condition_variable>
#include <cstdint>
#include <map>
#include <mutex>
#include <optional>
#include <string>

namespace VeskLib::Board {

// What goes wrong with the replies of a running back-end because somebody asked for it, for tests
// and demonstrations. Everything is off at the start. May be used by several threads at once.
class FaultSwitches {
public:
    // `allowed` says whether orders are taken, which only tests and demonstrations want.
    explicit FaultSwitches(bool allowed = false) : allowed(allowed) {}

    bool areAllowed() const { return allowed; }

    // What is to happen to one request.
    struct Fault {
        bool refused = false;  // not carried out, but answered with `errorCode`
        std::uint32_t errorCode = 0;
        // When set, the request is carried out, but only so many bytes of the reply leave.
        std::optional<std::size_t> sentBytes;
    };

    // The fault of the request that has just come, which counts as one of those asked for. Returns
    // late when that is the fault.
    Fault next(std::uint32_t requestNumber);

    // Nobody waits any more: the back-end ends.
    void end();

    // The orders. `times` is how many requests they are for.
    void refuse(std::uint32_t requestNumber, std::uint32_t errorCode, unsigned int times);
    void delay(int milliseconds, unsigned int times);
    void silence(unsigned int times);
    void tear(std::size_t replyBytes, unsigned int times);
    void reset();

    // A partition is running, or not, from now on, whatever the board description says.
    void setRunning(unsigned int partition, bool isOn);

    // Whether the partition is running; `described` is what the board description says.
    bool isRunning(unsigned int partition, bool described) const;

    // The orders still to be carried out, a line each; empty when there is none.
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
