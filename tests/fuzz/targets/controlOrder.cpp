// The orders of boardctl, one per line.

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
    std::string active;  // the answer to the last order
    for (std::size_t count = 1; !rest.empty() && count <= MOST_ORDERS; ++count) {
        const std::string order = Fuzz::takeLine(rest);
        if (order.find("die") != std::string::npos) {
            continue;  // would end the process
        }
        try {
            active = Board::carryOutOrder(order, switches);
            Fuzz::require(active == switches.describe(), "an order returns the active faults");
            Fuzz::require(active.size() <= count * LONGEST_DESCRIPTION, "the answer is short");
        } catch (const std::invalid_argument&) {
            Fuzz::require(switches.describe() == active, "a rejected order changes nothing");
        }
    }
    switches.reset();
    Fuzz::require(switches.describe().empty(), "a reset switches everything off");
    return 0;
}
