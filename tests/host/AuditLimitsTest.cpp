#include "platform/host/audit/AuditLimits.h"

#include <gtest/gtest.h>

namespace VeskLib::Test {

using namespace Host;

namespace {

const std::time_t START = 1000000;

AuditEvent eventOf(const std::string& name, const std::string& user = "") {
    AuditEvent event;
    event.event = name;
    event.user = user;
    return event;
}

// Returns how many of `count` events at `now` get a line.
unsigned int admitted(AuditLimits& limits, unsigned int count, std::time_t now,
                      const std::string& user = "") {
    unsigned int lines = 0;
    for (unsigned int i = 0; i < count; ++i) {
        lines += limits.admit(eventOf("refusal", user), now) ? 1 : 0;
    }
    return lines;
}

}  // namespace

TEST(AuditLimits, admitTenEventsAMinute) {
    AuditLimits limits;
    EXPECT_EQ(admitted(limits, 25, START), 10U);
    EXPECT_EQ(admitted(limits, 25, START + 59), 0U);
    EXPECT_EQ(admitted(limits, 5, START + 300), 5U);
}

TEST(AuditLimits, reportCountedEvents) {
    AuditLimits limits;
    admitted(limits, 13, START);
    limits.admit(eventOf("login_failed"), START + 1);
    EXPECT_TRUE(limits.takeReports(START + 59).empty());
    const std::vector<AuditEvent> reports = limits.takeReports(START + 60);
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].event, "anonymous");
    EXPECT_EQ(reports[0].counts,
              (std::map<std::string, unsigned int>{{"login_failed", 1}, {"refusal", 3}}));
    EXPECT_TRUE(limits.takeReports(START + 61).empty());
}

TEST(AuditLimits, keepCountsOfConsecutivePeriods) {
    AuditLimits limits;
    admitted(limits, 13, START);
    admitted(limits, 13, START + 60);
    const std::vector<AuditEvent> reports = limits.takeReports(START + 1000);
    ASSERT_EQ(reports.size(), 1U);
    EXPECT_EQ(reports[0].counts.at("refusal"), 6U);
}

TEST(AuditLimits, admitFewerAndFewerLinesOfLongFlood) {
    AuditLimits limits;
    unsigned int lines = 0;
    const std::time_t day = 24 * 60 * 60;
    for (std::time_t now = START; now < START + day; now += 5) {
        lines += admitted(limits, 1, now);
    }
    // Periods of 1, 2, 4 ... minutes: eleven begin within a day.
    EXPECT_LE(lines, 110U);
    EXPECT_GE(lines, 90U);
}

TEST(AuditLimits, resetAfterQuietTime) {
    AuditLimits limits;
    admitted(limits, 20, START);
    admitted(limits, 20, START + 60);  // begins a period of two minutes
    EXPECT_EQ(admitted(limits, 20, START + 600), 10U);
    EXPECT_EQ(admitted(limits, 20, START + 659), 0U);
    EXPECT_EQ(admitted(limits, 20, START + 661), 10U);
}

TEST(AuditLimits, countUsersSeparately) {
    AuditLimits limits;
    EXPECT_EQ(admitted(limits, 20, START), 10U);
    EXPECT_EQ(admitted(limits, 12, START, "viewer"), 10U);
    const std::vector<AuditEvent> reports = limits.takeReports(START + 60);
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[1].event, "repeated");
    EXPECT_EQ(reports[1].user, "viewer");
    EXPECT_EQ(reports[1].counts.at("refusal"), 2U);
}

TEST(AuditLimits, admitEventsAfterClockIsSetBack) {
    AuditLimits limits;
    EXPECT_EQ(admitted(limits, 20, START), 10U);
    EXPECT_EQ(admitted(limits, 20, START - 100000), 10U);
}

TEST(AuditLimits, surviveSaveAndLoad) {
    AuditLimits limits;
    admitted(limits, 13, START);
    admitted(limits, 11, START, "\xFF \"x\"");
    AuditLimits read = AuditLimits::load(limits.save());
    EXPECT_EQ(admitted(read, 1, START + 1), 0U);
    const std::vector<AuditEvent> reports = read.takeReports(START + 60);
    ASSERT_EQ(reports.size(), 2U);
    EXPECT_EQ(reports[0].counts.at("refusal"), 4U);
}

TEST(AuditLimits, resetOnDamagedText) {
    for (const char* text : {"", "{", "[]", "{\"\":1}", "{\"\":{\"start\":\"x\"}}",
                             "{\"\":{\"start\":1,\"length\":-5,\"lines\":0}}"}) {
        AuditLimits limits = AuditLimits::load(text);
        EXPECT_EQ(admitted(limits, 11, START), 10U) << text;
    }
}

}  // namespace VeskLib::Test
