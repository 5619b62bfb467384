#include "tests/backend/support/sampleBoard.h"

namespace VeskLib::Test {

Board::BoardDescription makeSampleBoard() {
    Board::BoardDescription board;
    board.partitions.resize(6);
    const char* const versions[] = {"1.23 B", "1.9", "2.0", "7.7", "1.23 B"};
    const char* const configurations[] = {"zero", "one", "two", "three", "four"};
    for (unsigned char number = 0; number < 5; ++number) {
        board.systemBoards[number] = {true, number != 3, versions[number]};
        const std::string text = configurations[number];
        Board::PartitionDescription& partition = board.partitions[number];
        partition.installed = true;
        partition.running = number == 4;
        partition.name = "Partition " + std::to_string(number);
        partition.nodeIds = {0x21, number};
        partition.initialPayload.assign(text.begin(), text.end());
    }
    return board;
}

}  // namespace VeskLib::Test
