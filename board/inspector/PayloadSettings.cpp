#include "board/inspector/PayloadSettings.h"

#include "board/web/utf8.h"

#include <algorithm>
#include <string_view>

namespace VeskLib::Board {

PayloadSettings readSettings(const std::vector<unsigned char>& payload) {
    PayloadSettings read;
    std::string_view rest(reinterpret_cast<const char*>(payload.data()), payload.size());
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::size_t size = end == std::string_view::npos ? rest.size() : end + 1;
        const std::string_view line = rest.substr(0, end);
        const std::size_t equals = line.find('=');
        if (end == std::string_view::npos || equals == std::string_view::npos || equals == 0 ||
            !isPrintableUTF8(line)) {
            read.others.insert(read.others.end(), rest.begin(), rest.begin() + size);
        } else {
            read.settings.push_back(
                {std::string(line.substr(0, equals)), std::string(line.substr(equals + 1))});
        }
        rest.remove_prefix(size);
    }
    return read;
}

}  // namespace VeskLib::Board
