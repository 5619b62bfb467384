#include "platform/host/html/messageLines.h"

#include "platform/host/html/escape.h"
#include "platform/host/html/printText.h"
#include "platform/host/text/Catalogue.h"

#include <algorithm>
#include <string_view>

namespace VeskLib::Host {

namespace {

const int ACTIVITY_LINK = 9015;

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

// What matters most among the lines: what is not known, then what was refused.
Outcome findOutcome(const std::string& message, Outcome otherwise) {
    Outcome outcome = Outcome::UNTOLD;
    for (const std::string& line : splitMessage(message)) {
        const IssuedText* const issued = findIssuedText(line);
        outcome = std::max(outcome, issued == nullptr ? Outcome::UNTOLD : outcomeOf(*issued));
    }
    return outcome == Outcome::UNTOLD ? otherwise : outcome;
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
