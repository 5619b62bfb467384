#include "board/backend/runBackend.h"

int main(int argc, char** argv) {
    return VeskLib::Board::runBackend(argc, argv);
}
