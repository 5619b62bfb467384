#include "html/MetaTag.h"

#include "tests/unit/support/ScriptedTest.h"

namespace VeskLib::Test {

using Gui::MetaTag;

class MetaTagTest : public ScriptedTest {};

TEST_F(MetaTagTest, printsFrameIdAsName) {
    MetaTag("FRAME-ID", "M-RESTOR_EFI_CONF-C-00", "", "").printHTML();
    EXPECT_EQ(output(), "<meta name=\"FRAME-ID\" content=\"M-RESTOR_EFI_CONF-C-00\">");
}

TEST_F(MetaTagTest, printsOtherTagsAsHTTPEquiv) {
    MetaTag("Refresh", "5", "", "").printHTML();
    EXPECT_EQ(output(), "<meta http-equiv=\"Refresh\" content=\"5\">");
}

TEST_F(MetaTagTest, appendsURLToContent) {
    MetaTag("Refresh", "5", "/index.html", "").printHTML();
    EXPECT_EQ(output(), "<meta http-equiv=\"Refresh\" content=\"5;URL=/index.html\">");
}

TEST_F(MetaTagTest, appendsURLToFrameId) {
    MetaTag("FRAME-ID", "F", "/there", "").printHTML();
    EXPECT_EQ(output(), "<meta name=\"FRAME-ID\" content=\"F;URL=/there\">");
}

TEST_F(MetaTagTest, comparesFrameIdExactly) {
    for (const char* name : {"frame-id", "Frame-ID", "FRAME-Id", "FRAME-ID ", "FRAME-I", ""}) {
        MetaTag(name, "F", "", "").printHTML();
        EXPECT_TRUE(
            output().ends_with("<meta http-equiv=\"" + std::string(name) + "\" content=\"F\">"))
            << output();
    }
}

TEST_F(MetaTagTest, neverPrintsReservedText) {
    MetaTag("FRAME-ID", "F", "", "reserved").printHTML();
    MetaTag("Refresh", "5", "/there", "reserved").printHTML();
    EXPECT_EQ(output(),
              "<meta name=\"FRAME-ID\" content=\"F\">"
              "<meta http-equiv=\"Refresh\" content=\"5;URL=/there\">");
}

TEST_F(MetaTagTest, printsTextsUnescaped) {
    MetaTag("<&\">", "<&'>", "?a=1&b=2", "").printHTML();
    EXPECT_EQ(output(), "<meta http-equiv=\"<&\">\" content=\"<&'>;URL=?a=1&b=2\">");
}

TEST_F(MetaTagTest, isNeverAnError) {
    EXPECT_FALSE(MetaTag("FRAME-ID", "F", "", "").isError());
}

}  // namespace VeskLib::Test
