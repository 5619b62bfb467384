#pragma once

#include <optional>
#include <stdexcept>
#include <string>

namespace Efictl {

// How efictl ends. Scripts depend on the numbers; docs/automation.md describes them.
enum class ExitCode {
    DONE = 0,
    DIFFERENT = 1,    // or nothing to do, where that was asked
    USAGE = 2,        // the command line, or what it names, makes no sense
    UNREACHABLE = 3,  // no board answers there, or none that can be trusted
    REFUSED = 4,      // the board refused, or what the caller demanded does not hold
    UNKNOWN = 5,      // a change was sent, and its outcome cannot be known
    FAILED = 6,       // something failed on this machine: a folder, a disk, a file
};

// The number and the code of a board's message; docs/messages.md lists them.
struct MessageNumber {
    int message = 0;
    int code = 0;
};

// What keeps a command from going on: how efictl ends, a sentence for people and the board's
// message if it has sent one.
class Failure : public std::runtime_error {
public:
    Failure(ExitCode exitCode, const std::string& text,
            std::optional<MessageNumber> number = std::nullopt)
        : std::runtime_error(text), code(exitCode), messageNumber(number) {}

    ExitCode exitCode() const { return code; }
    const std::optional<MessageNumber>& number() const { return messageNumber; }

private:
    ExitCode code;
    std::optional<MessageNumber> messageNumber;
};

// A failure that may be over when the same request is sent again.
class PassingFailure : public Failure {
public:
    enum class Cause { CONNECTION, BUSY };

    PassingFailure(ExitCode exitCode, const std::string& text, Cause cause,
                   std::optional<MessageNumber> number = std::nullopt)
        : Failure(exitCode, text, number), causeOfFailure(cause) {}

    Cause cause() const { return causeOfFailure; }

private:
    Cause causeOfFailure;
};

}  // namespace Efictl
