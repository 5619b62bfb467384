// The orders of boardctl, one a line.

#include "board/backend/controlOrder.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

#include <stdexcept>

using namespace VeskLib;

namespace {

const std::size_t MOST_ORDERS = 50;
const std::size_t LONGEST_DESCRIPTION = 100;  // of one order

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = Fuzz::textOf(data, size);
    std::string_view rest = input;
    Board::FaultSwitches switches;
    std::string told;  // what was on after the last order
    for (std::size_t count = 1; !rest.empty() && count <= MOST_ORDERS; ++count) {
        const std::string order = Fuzz::takeLine(rest);
        if (order.find("die") != std::string::npos) {
            continue;  // would end the process
        }
        try {
            told = Board::carryOutOrder(order, switches);
            Fuzz::require(told == switches.describe(), "an order answers what is on");
            Fuzz::require(told.size() <= count * LONGEST_DESCRIPTION,
                          "what is on is told in a few words");
        } catch (const std::invalid_argument&) {
            Fuzz::require(switches.describe() == told, "a refused order changes nothing");
        }
    }
    switches.reset();
    Fuzz::require(switches.describe().empty(), "a reset switches everything off");
    return 0;
}
