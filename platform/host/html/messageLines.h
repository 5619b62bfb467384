#pragma once

#include "platform/host/text/issuedTexts.h"

#include <string>
#include <vector>

namespace VeskLib::Host {

// Splits a message at each "<br>".
std::vector<std::string> splitMessage(const std::string& message);

// Prints each line as a paragraph, escaped. If the catalogue issued it, the paragraph has the
// attributes data-message and data-code, by which a program recognises it in every language.
void printMessage(const std::string& message);

// Prints the message as a notice that shows the request's outcome by a word, an icon and a colour.
// The outcome is `otherwise` if no line comes from the catalogue. A notice of an unknown outcome
// has a link to the page that shows what was done.
void printNotice(const std::string& message, Outcome otherwise);

}  // namespace VeskLib::Host
