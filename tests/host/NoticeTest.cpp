#include "tests/host/printSkeleton.h"

#include <VeskLib/Gui/JsFunction.h>
#include <VeskLib/Gui/MessageMgr.h>
#include <VeskLib/lmsg_getmsg.h>

#include <gmock/gmock.h>

namespace VeskLib::Test {

using testing::AllOf;
using testing::HasSubstr;
using testing::Not;

namespace {

const int RESTORED = 70;
const int RESTORE_FAILED = 71;

std::string text(int message, int code) {
    return Gui::MessageMgr(0).getMessage(message, code);
}

std::string noticeOf(const std::string& message) {
    Gui::JsFunction function("onLoadFunction()");
    function.addAlertFunction(message);
    return printedIn("en", [&function] { function.printHTML(); });
}

std::string outcome(const char* name) {
    return std::string("data-outcome=\"") + name + "\"";
}

}  // namespace

TEST(NoticeTest, marksEachTextWithNumberAndCode) {
    const std::string notice = noticeOf(text(RESTORE_FAILED, 1602) + "<br>" + text(12, 1033));
    EXPECT_THAT(notice, HasSubstr("<p data-message=\"71\" data-code=\"1602\">"));
    EXPECT_THAT(notice, HasSubstr("<p data-message=\"12\" data-code=\"1033\">"));
}

TEST(NoticeTest, stylesEachOutcome) {
    EXPECT_THAT(noticeOf(text(RESTORED, 0)),
                AllOf(HasSubstr(outcome("done")), HasSubstr("\"notice success\"")));
    EXPECT_THAT(noticeOf(text(RESTORE_FAILED, 1602)),
                AllOf(HasSubstr(outcome("refused")), HasSubstr("\"notice error\"")));
    EXPECT_THAT(noticeOf(text(RESTORE_FAILED, 2002)),
                AllOf(HasSubstr(outcome("unknown")), HasSubstr("\"notice unknown\""),
                      HasSubstr("href=\"/activity.cgi\"")));
}

TEST(NoticeTest, isUnknownOnlyForUnansweredRestoreOrUnknownCode) {
    for (const int code : {1613, 2002, 2003, 2004, 1999}) {
        EXPECT_THAT(noticeOf(text(RESTORE_FAILED, code)), HasSubstr(outcome("unknown"))) << code;
        EXPECT_THAT(noticeOf(text(72, code)), HasSubstr(outcome("refused"))) << code;
    }
    for (const int code : {1601, 1603, 1609, 1612, 1615, 1616, 2001, 2005, 2006}) {
        EXPECT_THAT(noticeOf(text(RESTORE_FAILED, code)), HasSubstr(outcome("refused"))) << code;
    }
}

TEST(NoticeTest, showsMostSevereOutcome) {
    const std::string done = text(RESTORED, 0);
    const std::string refused = text(12, 1033);
    const std::string unknown = text(RESTORE_FAILED, 2003);
    EXPECT_THAT(noticeOf(done + "<br>" + refused), HasSubstr(outcome("refused")));
    EXPECT_THAT(noticeOf(refused + "<br>" + done), HasSubstr(outcome("refused")));
    EXPECT_THAT(noticeOf(unknown + "<br>" + refused + "<br>" + done),
                HasSubstr(outcome("unknown")));
}

TEST(NoticeTest, derivesNoOutcomeFromForeignText) {
    EXPECT_THAT(noticeOf("a text [71-1602]"),
                AllOf(Not(HasSubstr("data-")), HasSubstr("<p>a text [71-1602]</p>")));
}

TEST(NoticeTest, marksTraceTextAsEnglish) {
    char buffer[256];
    EXPECT_THAT(noticeOf(lmsg_getmsg(107, buffer, "the partition status")),
                HasSubstr("<p class=\"detail\" lang=\"en\">Failed to obtain the partition status"));
}

}  // namespace VeskLib::Test
