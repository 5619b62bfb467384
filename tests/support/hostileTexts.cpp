#include "tests/support/hostileTexts.h"

namespace VeskLib::Test {

namespace {

const std::vector<std::string> UNPRINTABLE_TEXTS = {
    "two\nlines\r\nand\rmore",
    "tab\tand bell\a and escape\x1B[2J",
    "separators \xE2\x80\xA8 and \xE2\x80\xA9",
    "\xE2\x80\xAEtxet desrever\xE2\x80\xAC \xD7\x90\xD7\x91",
};

std::vector<std::string> joinTexts() {
    std::vector<std::string> texts = printableTexts();
    texts.insert(texts.end(), UNPRINTABLE_TEXTS.begin(), UNPRINTABLE_TEXTS.end());
    return texts;
}

}  // namespace

const std::vector<std::string>& hostileTexts() {
    static const std::vector<std::string> TEXTS = joinTexts();
    return TEXTS;
}

const std::vector<std::string>& printableTexts() {
    static const std::vector<std::string> TEXTS = {
        "<script>alert(1)</script>",
        "</script><script>alert(1)</script>",
        "</SCRIPT >",
        "<!-- <script> -->",
        "\"><img src=x onerror=alert(1)>",
        "' autofocus onfocus='alert(1)",
        "`${alert(1)}`",
        "\");alert(1);(\"",
        "\\\");alert(1);//",
        "ends in a backslash\\",
        "</title></td></textarea><p>",
        "&lt;b&gt; &amp; &#60; &quot",
        "{{message}}",
        "{{if message}}{{end}}{{",
        "%s%s%n%1000000d",
        "1&filename=2?filename=3",
        "caf\xC3\xA9 \xE8\xA3\xBD\xE5\x93\x81",
        "not UTF-8: \xFF\xFE\xC3",
    };
    return TEXTS;
}

}  // namespace VeskLib::Test
