#pragma once

#include <map>
#include <string>
#include <string_view>

namespace VeskLib::Host {

// Parses application/x-www-form-urlencoded text in pieces of any size into a map of fields. Of
// fields with the same name, the first one counts. A "%" without two hexadecimal digits is literal.
class UrlencodedReader {
public:
    // `fields` must outlive the reader. Existing fields are kept.
    explicit UrlencodedReader(std::map<std::string, std::string>& fields) : fields(fields) {}

    // Throws PException (REQUEST_TOO_LARGE) if the text exceeds one of the FormLimits.
    void feed(std::string_view piece);

    // Ends the text and so completes the last field. Throws like feed().
    void finish();

private:
    void endField();

    std::map<std::string, std::string>& fields;
    std::string name;   // as sent, not decoded
    std::string value;  // as sent, not decoded
    bool inValue = false;
    std::size_t fieldCount = 0;
};

}  // namespace VeskLib::Host
