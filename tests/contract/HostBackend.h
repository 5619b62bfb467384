#pragma once

#include "tests/contract/platformSpecifics.h"
#include "tests/support/ChildProcess.h"

#include <memory>
#include <string>
#include <vector>

namespace VeskLib::Test {

// The host platform's back-end for the tests: a child process that listens on the socket of the
// board's root and serves one connection at a time. The frames are described in
// docs/wire-formats.md.
class HostBackend : public Backend {
public:
    // Throws std::runtime_error if it cannot listen.
    explicit HostBackend(const std::vector<BackendReply>& replies);
    ~HostBackend() override;

    std::vector<BackendRequest> stop() override;

private:
    std::string path;
    int listener;
    std::unique_ptr<ChildProcess> process;
};

}  // namespace VeskLib::Test
