#pragma once

#include <map>
#include <string>
#include <string_view>

namespace VeskLib::Host {

// Reads application/x-www-form-urlencoded text in pieces of any size into a map of fields. The
// first field of a name counts. An escape that is not two hexadecimal digits stands for itself.
class UrlencodedReader {
public:
    // `fields` must outlive the reader. Fields that it holds already are kept.
    explicit UrlencodedReader(std::map<std::string, std::string>& fields) : fields(fields) {}

    // Throws PException (REQUEST_TOO_LARGE) when a limit of FormLimits is passed.
    void feed(std::string_view piece);

    // Ends the text: the last field is complete.
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
