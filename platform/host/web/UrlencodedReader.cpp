#include "platform/host/web/UrlencodedReader.h"

#include "platform/host/base/platformException.h"
#include "platform/host/web/FormLimits.h"

namespace VeskLib::Host {

namespace {

// An escape has three characters, so that an encoded text is at most this much longer.
const std::size_t ENCODED_GROWTH = 3;

int hexadecimalDigit(char character) {
    if (character >= '0' && character <= '9') {
        return character - '0';
    }
    const int letter = character | 0x20;
    return letter >= 'a' && letter <= 'f' ? letter - 'a' + 10 : -1;
}

std::string decode(std::string_view text) {
    std::string decoded;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool escape = text[i] == '%' && i + 2 < text.size() &&
                            hexadecimalDigit(text[i + 1]) >= 0 &&
                            hexadecimalDigit(text[i + 2]) >= 0;
        if (escape) {
            decoded += static_cast<char>(hexadecimalDigit(text[i + 1]) << 4 |
                                         hexadecimalDigit(text[i + 2]));
            i += 2;
        } else {
            decoded += text[i] == '+' ? ' ' : text[i];
        }
    }
    return decoded;
}

[[noreturn]] void refuse(const char* limit) {
    throw makePlatformException(REQUEST_TOO_LARGE, limit);
}

}  // namespace

void UrlencodedReader::feed(std::string_view piece) {
    for (const char character : piece) {
        if (character == '&') {
            endField();
        } else if (character == '=' && !inValue) {
            inValue = true;
        } else if (inValue) {
            value += character;
        } else {
            name += character;
        }
        if (name.size() > FormLimits::NAME_LENGTH * ENCODED_GROWTH) {
            refuse("A field name is too long");
        }
        if (value.size() > FormLimits::VALUE_LENGTH * ENCODED_GROWTH) {
            refuse("A field value is too long");
        }
    }
}

void UrlencodedReader::finish() {
    endField();
}

void UrlencodedReader::endField() {
    if (!name.empty() || inValue) {
        if (++fieldCount > FormLimits::FIELDS) {
            refuse("There are too many fields");
        }
        std::string decodedName = decode(name);
        std::string decodedValue = decode(value);
        if (decodedName.size() > FormLimits::NAME_LENGTH) {
            refuse("A field name is too long");
        }
        if (decodedValue.size() > FormLimits::VALUE_LENGTH) {
            refuse("A field value is too long");
        }
        fields.emplace(std::move(decodedName), std::move(decodedValue));
    }
    name.clear();
    value.clear();
    inValue = false;
}

}  // namespace VeskLib::Host
