#include "client/report/printResult.h"

#include "board/web/utf8.h"
#include "platform/host/html/escape.h"

#include <algorithm>
#include <iostream>

namespace Efictl {

namespace {

using nlohmann::ordered_json;

const int SCHEMA = 1;

// The limit in bytes for a text; the rest is cut off.
const std::size_t LONGEST_LINE = 4096;

const std::size_t LONGEST_CHARACTER = 4;

// Returns the bytes of the character at the start of `text`; 0 if it is malformed.
std::size_t characterSize(std::string_view text) {
    for (std::size_t size = 1; size <= std::min(LONGEST_CHARACTER, text.size()); ++size) {
        const std::string_view character = text.substr(0, size);
        // Control characters are well-formed; makeVisible() replaces them.
        if (size == 1 && static_cast<unsigned char>(character.front()) < 0x80) {
            return 1;
        }
        if (size == 2 && character.front() == '\xC2') {
            const auto next = static_cast<unsigned char>(character.back());
            return next >= 0x80 && next <= 0xBF ? 2 : 0;
        }
        if (size > 1 && VeskLib::Board::isPrintableUTF8(character)) {
            return size;
        }
    }
    return 0;
}

const char* nameOf(ExitCode code) {
    switch (code) {
        case ExitCode::DONE:
            return "done";
        case ExitCode::DIFFERENT:
            return "different";
        case ExitCode::USAGE:
            return "usage";
        case ExitCode::UNREACHABLE:
            return "unreachable";
        case ExitCode::REFUSED:
            return "refused";
        case ExitCode::UNKNOWN:
            return "unknown";
        case ExitCode::FAILED:
            return "failed";
    }
    return "";
}

std::string describe(const Result::Reason& reason) {
    std::string text = reason.text;
    const bool isNumbered = reason.number && reason.number->message != 0;
    if (isNumbered && text.find('[') == std::string::npos) {
        text += " [" + std::to_string(reason.number->message) + "-" +
                std::to_string(reason.number->code) + "]";
    }
    return text;
}

}  // namespace

std::string forTerminal(std::string_view text) {
    std::string wellFormed;
    while (!text.empty() && wellFormed.size() < LONGEST_LINE) {
        const std::size_t size = characterSize(text);
        if (size == 0) {
            wellFormed += "\uFFFD";
            text.remove_prefix(1);
        } else {
            wellFormed += text.front() == '\t' ? std::string_view(" ") : text.substr(0, size);
            text.remove_prefix(size);
        }
    }
    return VeskLib::Host::makeVisible(wellFormed) + (text.empty() ? "" : "…");
}

void printText(const Result& result, bool quiet) {
    if (!quiet) {
        for (const std::string& line : result.lines) {
            std::cout << forTerminal(line) << '\n';
        }
    }
    std::cout.flush();
    for (const std::string& warning : result.warnings) {
        std::cerr << "efictl: warning: " << forTerminal(warning) << '\n';
    }
    if (result.reason) {
        std::cerr << "efictl: " << forTerminal(describe(*result.reason)) << '\n';
    }
}

void printJSON(const Result& result, const std::string& command, const std::string& board) {
    ordered_json json = {
        {"schema", SCHEMA},
        {"command", command},
        {"board", board.empty() ? ordered_json() : ordered_json(board)},
        {"status", nameOf(result.exitCode)},
        {"exit", static_cast<int>(result.exitCode)},
        {"changed", result.changed},
        {"reason", result.reason ? toJSON(*result.reason) : ordered_json()},
        {"warnings", result.warnings},
        {"partitions", result.partitions},
    };
    json.update(result.details);
    const int indentation = 2;
    std::cout << json.dump(indentation, ' ', true, ordered_json::error_handler_t::replace) << '\n';
}

}  // namespace Efictl
