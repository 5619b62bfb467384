#pragma once

#include "platform/host/text/issuedTexts.h"

#include <string>
#include <vector>

namespace VeskLib::Host {

// The lines of a message whose texts are joined by "<br>".
std::vector<std::string> splitMessage(const std::string& message);

// Prints each line as a paragraph, escaped. If the catalogue issued it, the paragraph has the
// attributes data-message and data-code, so that a client without eyes knows it in every language.
void printMessage(const std::string& message);

// Prints the message as a notice that shows in words, by an icon and by its colour what it says
// about the request: `otherwise` if no line comes from the catalogue. An unknown outcome has a link
// to the page that shows what was done.
void printNotice(const std::string& message, Outcome otherwise);

}  // namespace VeskLib::Host
