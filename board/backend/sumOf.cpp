#include "board/backend/sumOf.h"

#include <sha256.h>

namespace VeskLib::Board {

std::string sumOf(const std::string& text) {
    char digest[SHA256_DIGEST_STRING_LENGTH];
    return SHA256Data(reinterpret_cast<const unsigned char*>(text.data()), text.size(), digest);
}

}  // namespace VeskLib::Board
