#include "board/backend/FaultSwitches.h"

#include <chrono>

namespace VeskLib::Board {

namespace {

// Decrements `times`. Returns false if it is 0.
bool takeOne(unsigned int& times) {
    if (times == 0) {
        return false;
    }
    --times;
    return true;
}

std::string line(const std::string& order, unsigned int times) {
    return times == 0 ? "" : order + ", " + std::to_string(times) + " times\n";
}

}  // namespace

FaultSwitches::Fault FaultSwitches::next(std::uint32_t requestNumber) {
    std::unique_lock<std::mutex> lock(guard);
    Fault fault;
    const auto refusal = refusals.find(requestNumber);
    if (refusal != refusals.end() && takeOne(refusal->second.times)) {
        fault.refused = true;
        fault.errorCode = refusal->second.errorCode;
    }
    if (takeOne(silences)) {
        fault.sentBytes = 0;
    } else if (takeOne(tears)) {
        fault.sentBytes = tornBytes;
    }
    if (takeOne(delays)) {
        ending.wait_for(lock, std::chrono::milliseconds(delayMilliseconds),
                        [this] { return ended; });
    }
    return fault;
}

void FaultSwitches::end() {
    const std::scoped_lock lock(guard);
    ended = true;
    ending.notify_all();
}

void FaultSwitches::refuse(std::uint32_t requestNumber, std::uint32_t errorCode,
                           unsigned int times) {
    const std::scoped_lock lock(guard);
    refusals[requestNumber] = {errorCode, times};
}

void FaultSwitches::delay(int milliseconds, unsigned int times) {
    const std::scoped_lock lock(guard);
    delayMilliseconds = milliseconds;
    delays = times;
}

void FaultSwitches::silence(unsigned int times) {
    const std::scoped_lock lock(guard);
    silences = times;
}

void FaultSwitches::tear(std::size_t replyBytes, unsigned int times) {
    const std::scoped_lock lock(guard);
    tornBytes = replyBytes;
    tears = times;
}

void FaultSwitches::reset() {
    const std::scoped_lock lock(guard);
    refusals.clear();
    delays = 0;
    silences = 0;
    tears = 0;
    running.clear();
}

void FaultSwitches::setRunning(unsigned int partition, bool isOn) {
    const std::scoped_lock lock(guard);
    running[partition] = isOn;
}

bool FaultSwitches::isRunning(unsigned int partition, bool described) const {
    const std::scoped_lock lock(guard);
    const auto ordered = running.find(partition);
    return ordered == running.end() ? described : ordered->second;
}

std::string FaultSwitches::describe() const {
    const std::scoped_lock lock(guard);
    std::string text;
    for (const auto& [number, refusal] : refusals) {
        text += line("request " + std::to_string(number) + " is refused with code " +
                         std::to_string(refusal.errorCode),
                     refusal.times);
    }
    text += line("requests wait " + std::to_string(delayMilliseconds) + " ms", delays);
    text += line("requests are not answered", silences);
    text += line("replies break off after " + std::to_string(tornBytes) + " bytes", tears);
    for (const auto& [partition, isOn] : running) {
        text += "partition " + std::to_string(partition) + (isOn ? " is on\n" : " is off\n");
    }
    return text;
}

}  // namespace VeskLib::Board
