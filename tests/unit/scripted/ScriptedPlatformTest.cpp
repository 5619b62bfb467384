// What the tests of the program rely on: the scripted platform sees what it is there to see.

#include "tests/scripted/systemCalls.h"
#include "tests/unit/support/ProbeComponent.h"
#include "tests/unit/support/ScriptedTest.h"
#include "tests/unit/support/TemporaryFolder.h"

#include <VeskLib/CommonUtil.h>
#include <VeskLib/Gui/HTMLMapUtil.h>
#include <VeskLib/Gui/TextString.h>
#include <VeskLib/lmsg_getmsg.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>

namespace VeskLib::Test {

class ScriptedPlatformTest : public ScriptedTest {};

TEST_F(ScriptedPlatformTest, noticesAnObjectThatIsNotDeleted) {
    auto text = std::make_unique<Gui::TextString>("text", false, true);
    EXPECT_THAT(Scripted::livingObjects(),
                testing::ElementsAre("TextString(text, false, true, 6)"));
    text.reset();
    EXPECT_THAT(Scripted::livingObjects(), testing::IsEmpty());
}

TEST_F(ScriptedPlatformTest, noticesAnObjectThatIsDeletedTwice) {
    const int object = 0;
    Scripted::objectMade(&object, "object");
    Scripted::objectDeleted(&object);
    EXPECT_EQ(Scripted::wrongDeletions(), 0u);
    Scripted::objectDeleted(&object);
    EXPECT_EQ(Scripted::wrongDeletions(), 1u);
    Scripted::forgetRecords();
}

TEST_F(ScriptedPlatformTest, deletesADisplacedComponent) {
    std::map<std::string, Gui::HTMLComponent*> components;
    Gui::HTMLMapUtil::insertIntoMap(components, "name", new ProbeComponent("old"));
    Gui::HTMLMapUtil::insertIntoMap(components, "name", new ProbeComponent("new"));
    EXPECT_THAT(calls(), testing::ElementsAre("new old", "insertIntoMap name", "new new",
                                              "insertIntoMap name, which displaces", "delete old"));
    delete components["name"];
}

TEST_F(ScriptedPlatformTest, rendersTheMessagesWithTheirArguments) {
    char text[256];
    EXPECT_STREQ(lmsg_getmsg(107, text, "a"), "lmsg 107 [a]");
    EXPECT_STREQ(lmsg_getmsg(20003, text, "a"), "lmsg 20003 [a]");
    EXPECT_STREQ(lmsg_getmsg(20020, text, "a"), "lmsg 20020 [a]");
    EXPECT_STREQ(lmsg_getmsg(20011, text, "a", 13), "lmsg 20011 [a] [13]");
    EXPECT_STREQ(lmsg_getmsg(20034, text, "a", -1), "lmsg 20034 [a] [-1]");
    EXPECT_STREQ(lmsg_getmsg(1, text), "lmsg 1 of an unknown number");
}

TEST_F(ScriptedPlatformTest, theLastPartitionNumberStays) {
    script.maxPartitionNumbers = {3, 5};
    EXPECT_EQ(CommonUtil::getMaxPartitionNum(), 3u);
    EXPECT_EQ(CommonUtil::getMaxPartitionNum(), 5u);
    EXPECT_EQ(CommonUtil::getMaxPartitionNum(), 5u);
}

TEST_F(ScriptedPlatformTest, systemCallsTouchNothingUnlessTheScriptSaysSo) {
    const TemporaryFolder folder;
    const std::string path = folder.path / "file";
    EXPECT_EQ(creat(path.c_str(), 0644), Scripted::SCRIPTED_DESCRIPTOR);
    EXPECT_EQ(close(Scripted::SCRIPTED_DESCRIPTOR), 0);
    EXPECT_EQ(std::rename(path.c_str(), "/elsewhere"), 0);
    EXPECT_EQ(std::remove(path.c_str()), 0);
    EXPECT_THAT(calls(), testing::ElementsAre("creat " + path + " 0644", "close 100000",
                                              "rename " + path + " /elsewhere", "remove " + path));
    script.realFiles = true;
    const int descriptor = creat(path.c_str(), 0644);
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_EQ(close(descriptor), 0);
}

TEST_F(ScriptedPlatformTest, systemCallsFailAsTheScriptSays) {
    script.creatError = EACCES;
    script.renameError = EXDEV;
    script.removeError = ENOENT;
    EXPECT_EQ(creat("/file", 0644), -1);
    EXPECT_EQ(errno, EACCES);
    EXPECT_EQ(std::rename("/file", "/elsewhere"), -1);
    EXPECT_EQ(errno, EXDEV);
    EXPECT_EQ(std::remove("/file"), -1);
    EXPECT_EQ(errno, ENOENT);
    EXPECT_EQ(close(-1), -1);
    EXPECT_EQ(errno, EBADF);
}

}  // namespace VeskLib::Test
