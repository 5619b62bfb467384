#include "board/backend/controlOrder.h"

#include "board/backend/Refusal.h"
#include "board/backend/restartBackend.h"

#include <charconv>
#include <limits>
#include <sstream>
#include <stdexcept>

namespace VeskLib::Board {

namespace {

const unsigned int LONGEST_WAIT_MILLISECONDS = 10 * 60 * 1000;

// Reads an order word by word. Throws std::invalid_argument if it is malformed.
class Words {
public:
    explicit Words(const std::string& order) : stream(order) {}

    std::string text() {
        std::string word;
        if (!(stream >> word)) {
            throw std::invalid_argument("the order is too short");
        }
        return word;
    }

    unsigned int number(unsigned int largest = std::numeric_limits<unsigned int>::max()) {
        const std::string word = text();
        unsigned int value = 0;
        const char* const end = word.data() + word.size();
        const std::from_chars_result result = std::from_chars(word.data(), end, value);
        if (result.ec != std::errc() || result.ptr != end || value > largest) {
            throw std::invalid_argument(word + " is not a number in range");
        }
        return value;
    }

    void end() {
        std::string word;
        if (stream >> word) {
            throw std::invalid_argument(word + " is one word too many");
        }
    }

private:
    std::istringstream stream;
};

void orderRefusal(Words& words, FaultSwitches& switches) {
    const unsigned int request = words.number();
    const unsigned int code = words.number();
    const unsigned int times = words.number();
    words.end();
    switches.refuse(request, code, times);
}

void orderDelay(Words& words, FaultSwitches& switches) {
    const unsigned int milliseconds = words.number(LONGEST_WAIT_MILLISECONDS);
    const unsigned int times = words.number();
    words.end();
    switches.delay(static_cast<int>(milliseconds), times);
}

void orderTear(Words& words, FaultSwitches& switches) {
    const unsigned int bytes = words.number();
    const unsigned int times = words.number();
    words.end();
    switches.tear(bytes, times);
}

void orderPartition(Words& words, FaultSwitches& switches,
                    const std::function<bool(unsigned int)>& isInstalled) {
    const unsigned int partition = words.number();
    const std::string state = words.text();
    words.end();
    if (state != "on" && state != "off") {
        throw std::invalid_argument(state + " is neither on nor off");
    }
    if (isInstalled && !isInstalled(partition)) {
        throw Refusal{Host::BACKEND_NO_PARTITION, "the order is for a partition not installed"};
    }
    switches.setRunning(partition, state == "on");
}

}  // namespace

std::string carryOutOrder(const std::string& order, FaultSwitches& switches,
                          const std::function<bool(unsigned int)>& isInstalled) {
    Words words(order);
    const std::string verb = words.text();
    if (verb == "refuse") {
        orderRefusal(words, switches);
    } else if (verb == "slow") {
        orderDelay(words, switches);
    } else if (verb == "silent") {
        const unsigned int times = words.number();
        words.end();
        switches.silence(times);
    } else if (verb == "torn") {
        orderTear(words, switches);
    } else if (verb == "partition") {
        orderPartition(words, switches, isInstalled);
    } else if (verb == "die") {
        const unsigned int milliseconds = words.number(LONGEST_WAIT_MILLISECONDS);
        words.end();
        restartBackend(static_cast<int>(milliseconds));
    } else if (verb == "reset") {
        words.end();
        switches.reset();
    } else if (verb == "status") {
        words.end();
    } else {
        throw std::invalid_argument("there is no order " + verb);
    }
    return switches.describe();
}

}  // namespace VeskLib::Board
