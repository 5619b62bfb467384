#pragma once

#include <optional>
#include <stdexcept>
#include <string>

namespace Efictl {

// The exit status of efictl. Scripts depend on the numbers; docs/automation.md describes them.
enum class ExitCode {
    DONE = 0,
    DIFFERENT = 1,    // something differs, or nothing was stored with --exit-code
    USAGE = 2,        // the command line is wrong, or lacks a board, a user or a password
    UNREACHABLE = 3,  // no board answers, or its response cannot be trusted or understood
    REFUSED = 4,      // the board refused, or a condition of the command line is not met
    UNKNOWN = 5,      // a restore was sent, but its outcome is not known
    FAILED = 6,       // something failed on this machine: a folder, a disk, a file
};

// The number and the code of a board's message; docs/messages.md lists them.
struct MessageNumber {
    int message = 0;
    int code = 0;
};

// Thrown to end a command. Has the exit status, a sentence for people and, if the board sent a
// message, its number.
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

// A transient failure: the same request may succeed if it is sent again.
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
