#include "platform/host/html/messageLines.h"

#include "platform/host/base/RefusalDetails.h"
#include "platform/host/html/escape.h"
#include "platform/host/html/printText.h"
#include "platform/host/text/Catalogue.h"

#include <algorithm>
#include <string_view>

namespace VeskLib::Host {

namespace {

const int ACTIVITY_LINK = 9015;
const int PARTITIONS_CONCERNED = 9018;
const int VERSIONS_CONCERNED = 9019;

// The longest version that a notice shows, in bytes.
const std::size_t LONGEST_VERSION = 80;

// How a notice shows an outcome. `word` is a caption.
struct OutcomeLook {
    const char* style;
    const char* name;
    const char* icon;
    int word;
};

// In the order of Outcome.
const OutcomeLook LOOKS[] = {
    {"notice", "", "", 0},
    {"notice success", "done", "\u2713", 9012},
    {"notice error", "refused", "\u2717", 9013},
    {"notice unknown", "unknown", "?", 9014},
};

void printCaption(int number) {
    const char* const text = findText(requestLanguage(), TextSet::CAPTIONS, number);
    if (text != nullptr) {
        printEscaped(text);
    }
}

// Returns the most serious outcome of the lines: unknown, then refused, then done; `otherwise` if
// no line has one.
Outcome findOutcome(const std::string& message, Outcome otherwise) {
    Outcome outcome = Outcome::UNTOLD;
    for (const std::string& line : splitMessage(message)) {
        const IssuedText* const issued = findIssuedText(line);
        outcome = std::max(outcome, issued == nullptr ? Outcome::UNTOLD : outcomeOf(*issued));
    }
    return outcome == Outcome::UNTOLD ? otherwise : outcome;
}

// Prints a caption with `values` in place of #1, #2 and so on.
void printFilled(int number, const std::vector<std::string>& values) {
    const char* const text = findText(requestLanguage(), TextSet::CAPTIONS, number);
    for (std::string_view rest = text == nullptr ? "" : text; !rest.empty();) {
        const std::size_t mark = std::min(rest.find('#'), rest.size());
        printEscaped(std::string(rest.substr(0, mark)));
        if (mark + 1 < rest.size()) {
            printEscaped(values.at(static_cast<std::size_t>(rest[mark + 1] - '1')));
        }
        rest.remove_prefix(std::min(mark + 2, rest.size()));
    }
}

std::string shorten(const std::string& version) {
    if (version.size() <= LONGEST_VERSION) {
        return version;
    }
    std::size_t end = LONGEST_VERSION;
    while (end > 0 && (static_cast<unsigned char>(version[end]) & 0xC0) == 0x80) {
        --end;  // not in the middle of a UTF-8 character
    }
    return version.substr(0, end) + "\u2026";
}

// Prints the partitions that a refusal is about: each with its versions, or all in one line.
void printDetails(const std::string& line) {
    const IssuedText* const issued = findIssuedText(line);
    const RefusalDetails& details = refusalDetails(issued == nullptr ? 0 : issued->code);
    if (details.partitions.empty()) {
        return;
    }
    printText("<p class=\"partitions\">");
    std::string numbers;
    const char* lineEnd = "";
    for (const RefusalDetails::Partition& partition : details.partitions) {
        const std::string number = std::to_string(partition.number);
        if (partition.version.empty()) {
            numbers += (numbers.empty() ? "" : ", ") + number;
        } else {
            printText(lineEnd);
            printFilled(VERSIONS_CONCERNED,
                        {number, shorten(partition.version), shorten(details.fileVersion)});
            lineEnd = "<br>";
        }
    }
    if (!numbers.empty()) {
        printFilled(PARTITIONS_CONCERNED, {numbers});
    }
    printText("</p>");
}

void printLineStart(const std::string& line) {
    const IssuedText* const issued = findIssuedText(line);
    if (issued == nullptr) {
        printText("<p>");
    } else if (issued->traced) {
        printText("<p class=\"detail\" lang=\"en\">");
    } else {
        printText("<p data-message=\"" + std::to_string(issued->number) + "\" data-code=\"" +
                  std::to_string(issued->code) + "\">");
    }
}

}  // namespace

std::vector<std::string> splitMessage(const std::string& message) {
    const std::string_view separator = "<br>";
    std::vector<std::string> lines;
    std::size_t start = 0;
    for (std::size_t end = message.find(separator); end != std::string::npos;
         end = message.find(separator, start)) {
        lines.push_back(message.substr(start, end - start));
        start = end + separator.size();
    }
    lines.push_back(message.substr(start));
    return lines;
}

void printMessage(const std::string& message) {
    for (const std::string& line : splitMessage(message)) {
        printLineStart(line);
        printEscaped(line);
        printText("</p>");
        printDetails(line);
    }
}

void printNotice(const std::string& message, Outcome otherwise) {
    const Outcome outcome = findOutcome(message, otherwise);
    const OutcomeLook& look = LOOKS[static_cast<std::size_t>(outcome)];
    printText(std::string("<div class=\"") + look.style + "\" role=\"alert\"");
    if (outcome != Outcome::UNTOLD) {
        printText(std::string(" data-outcome=\"") + look.name +
                  "\">\n<p class=\"outcome\"><span aria-hidden=\"true\">" + look.icon + "</span> ");
        printCaption(look.word);
        printText("</p");
    }
    printText(">");
    printMessage(message);
    if (outcome == Outcome::UNKNOWN) {
        printText("<p><a href=\"/activity.cgi\">");
        printCaption(ACTIVITY_LINK);
        printText("</a></p>");
    }
    printText("</div>\n");
}

}  // namespace VeskLib::Host
