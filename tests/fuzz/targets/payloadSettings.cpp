// The settings in two payloads, as eficonf compares them. "=====" and a line feed separate the two
// payloads of an input.

#include "board/inspector/FileReport.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

#include <algorithm>

using namespace VeskLib;

namespace {

const std::string_view SEPARATOR = "=====\n";

Host::ConfigurationFile fileOf(std::string_view payload) {
    Host::ConfigurationFile file;
    file.payload.assign(payload.begin(), payload.end());
    return file;
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = Fuzz::textOf(data, size);
    const std::string_view text = input;
    const std::size_t end = std::min(text.find(SEPARATOR), text.size());
    const Host::ConfigurationFile first = fileOf(text.substr(0, end));
    const Host::ConfigurationFile second =
        fileOf(text.substr(std::min(end + SEPARATOR.size(), text.size())));

    Fuzz::require(Board::compare(first, first).empty(), "a file does not differ from itself");
    const std::vector<Board::Difference> forth = Board::compare(first, second);
    const std::vector<Board::Difference> back = Board::compare(second, first);
    Fuzz::require(forth.empty() == (first.payload == second.payload),
                  "different payloads have differences");
    Fuzz::require(forth.size() == back.size(), "the differences are symmetric");
    for (std::size_t i = 0; i < forth.size(); ++i) {
        Fuzz::require(forth[i].what == back[i].what && forth[i].first == back[i].second &&
                          forth[i].second == back[i].first,
                      "the differences are symmetric");
    }
    return 0;
}
