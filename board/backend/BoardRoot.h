#pragma once

#include "platform/host/channel/BoardProperties.h"

#include <string>

namespace VeskLib::Board {

// The part of the board's root that is the back-end's. At most one object per root exists on the
// machine: the folder is locked while it lives.
class BoardRoot {
public:
    // Makes the folders that are missing under `root`, which must exist, locks it, and removes what
    // a killed back-end left half written. Sets BOARD_ROOT for this process. Throws
    // std::runtime_error with one line that says what is wrong.
    explicit BoardRoot(const std::string& root);
    BoardRoot(const BoardRoot&) = delete;
    BoardRoot& operator=(const BoardRoot&) = delete;
    ~BoardRoot();

    std::string statePath() const;
    std::string restoreLockPath() const;
    std::string socketPath() const;

    // Tells the other processes of the board what they must know of it, and the web server the
    // names that it may be called by. Throws std::runtime_error when a file cannot be written.
    void publishProperties(const Host::BoardProperties& properties) const;

private:
    int lock;
};

}  // namespace VeskLib::Board
