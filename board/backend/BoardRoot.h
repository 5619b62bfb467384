#pragma once

#include "platform/host/channel/BoardProperties.h"

#include <string>

namespace VeskLib::Board {

// The back-end's part of the board's root folder. The root is locked during the object's life, so
// that only one back-end uses it.
class BoardRoot {
public:
    // Creates missing folders under `root`, which must exist, locks it, and removes files that a
    // killed back-end left incomplete. Sets BOARD_ROOT for this process. Throws std::runtime_error
    // with a one-line message on failure.
    explicit BoardRoot(const std::string& root);
    BoardRoot(const BoardRoot&) = delete;
    BoardRoot& operator=(const BoardRoot&) = delete;
    ~BoardRoot();

    std::string statePath() const;
    std::string restoreLockPath() const;
    std::string socketPath() const;

    // Writes the board's properties for its other processes, and its host names for the web server.
    // Throws std::runtime_error if a file cannot be written.
    void publishProperties(const Host::BoardProperties& properties) const;

private:
    int lock;
};

}  // namespace VeskLib::Board
