// The choice of a language. The first line of an input is the language cookie, the rest is
// Accept-Language.

#include "platform/host/text/Catalogue.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

using namespace VeskLib;

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = Fuzz::textOf(data, size);
    std::string_view accepted = input;
    const std::string cookie = Fuzz::takeLine(accepted);
    const int language = Host::chooseLanguage(cookie, accepted);
    const int count = static_cast<int>(Host::languages().size());
    Fuzz::require(language >= 0 && language < count, "the language exists");
    for (int ours = 0; ours < count; ++ours) {
        const std::string tag = Host::languageTag(ours);
        Fuzz::require(Host::chooseLanguage(tag, input) == ours, "the cookie takes precedence");
        Fuzz::require(Host::chooseLanguage("", tag + "," + input) == ours,
                      "the first accepted language takes precedence over the others");
    }
    return 0;
}
