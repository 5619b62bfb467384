#pragma once

#include <string>

namespace VeskLib::Host {

// Which staged file this request is about, so that a restore cannot take another file than the one
// that its page showed. A file is named by the SHA-256 of its bytes, in lowercase hexadecimal
// digits; it is empty if there is no file.

// The hidden field in which the selection form posts the name of the file that its page showed.
inline constexpr const char* STAGED_FILE_FIELD = "staged_file";

// The staged file that this request has read, for the page that shows it.
void setShownFile(const std::string& name);
const std::string& shownFile();

// The file that the posted page showed. Whatever the client sent, at most one digit longer than a
// name.
void setPostedFile(const std::string& name);
const std::string& postedFile();

}  // namespace VeskLib::Host
