// Tests of the scripted platform, on which the tests of the program rely.

#include "data/HardInstallInfoPacket.h"
#include "tests/scripted/systemCalls.h"
#include "tests/unit/support/ProbeComponent.h"
#include "tests/unit/support/ScriptedTest.h"
#include "tests/unit/support/TemporaryFolder.h"

#include <VeskLib/CommonUtil.h>
#include <VeskLib/Gui/CGIRequester.h>
#include <VeskLib/Gui/FormInfo.h>
#include <VeskLib/Gui/HTMLMapUtil.h>
#include <VeskLib/Gui/TextString.h>
#include <VeskLib/VeskUi/VersionInfoPacket.h>
#include <VeskLib/lmsg_getmsg.h>

#include <fcntl.h>
#include <unistd.h>

#include <cerrno>
#include <cstdio>
#include <memory>

namespace VeskLib::Test {

class ScriptedPlatformTest : public ScriptedTest {};

TEST_F(ScriptedPlatformTest, detectsLeakedObject) {
    auto text = std::make_unique<Gui::TextString>("text", false, true);
    EXPECT_THAT(Scripted::livingObjects(),
                testing::ElementsAre("TextString(text, false, true, 6)"));
    text.reset();
    EXPECT_THAT(Scripted::livingObjects(), testing::IsEmpty());
}

TEST_F(ScriptedPlatformTest, detectsDoubleDeletion) {
    const int object = 0;
    Scripted::objectMade(&object, "object");
    Scripted::objectDeleted(&object);
    EXPECT_EQ(Scripted::wrongDeletions(), 0u);
    Scripted::objectDeleted(&object);
    EXPECT_EQ(Scripted::wrongDeletions(), 1u);
    Scripted::forgetRecords();
}

TEST_F(ScriptedPlatformTest, deletesReplacedComponent) {
    std::map<std::string, Gui::HTMLComponent*> components;
    Gui::HTMLMapUtil::insertIntoMap(components, "name", new ProbeComponent("old"));
    Gui::HTMLMapUtil::insertIntoMap(components, "name", new ProbeComponent("new"));
    EXPECT_THAT(calls(), testing::ElementsAre("new old", "insertIntoMap name", "new new",
                                              "insertIntoMap name, replacing", "delete old"));
    delete components["name"];
}

TEST_F(ScriptedPlatformTest, formatsMessagesWithArguments) {
    char text[256];
    EXPECT_STREQ(lmsg_getmsg(107, text, "a"), "lmsg 107 [a]");
    EXPECT_STREQ(lmsg_getmsg(20003, text, "a"), "lmsg 20003 [a]");
    EXPECT_STREQ(lmsg_getmsg(20020, text, "a"), "lmsg 20020 [a]");
    EXPECT_STREQ(lmsg_getmsg(20011, text, "a", 13), "lmsg 20011 [a] [13]");
    EXPECT_STREQ(lmsg_getmsg(20034, text, "a", -1), "lmsg 20034 [a] [-1]");
    EXPECT_STREQ(lmsg_getmsg(1, text), "lmsg 1 of an unknown number");
}

TEST_F(ScriptedPlatformTest, repeatsLastPartitionNumber) {
    script.maxPartitionNumbers = {3, 5};
    EXPECT_EQ(CommonUtil::getMaxPartitionNum(), 3u);
    EXPECT_EQ(CommonUtil::getMaxPartitionNum(), 5u);
    EXPECT_EQ(CommonUtil::getMaxPartitionNum(), 5u);
}

TEST_F(ScriptedPlatformTest, systemCallsTouchNoFilesByDefault) {
    const TemporaryFolder folder;
    const std::string path = folder.path / "file";
    EXPECT_EQ(creat(path.c_str(), 0644), script.descriptor);
    EXPECT_EQ(close(script.descriptor), 0);
    EXPECT_EQ(std::rename(path.c_str(), "/elsewhere"), 0);
    EXPECT_EQ(std::remove(path.c_str()), 0);
    EXPECT_THAT(calls(), testing::ElementsAre("creat " + path + " 0644", "close 100000",
                                              "rename " + path + " /elsewhere", "remove " + path));
    script.realFiles = true;
    const int descriptor = creat(path.c_str(), 0644);
    EXPECT_TRUE(std::filesystem::exists(path));
    EXPECT_EQ(close(descriptor), 0);
}

TEST_F(ScriptedPlatformTest, systemCallsFailAsScripted) {
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

TEST_F(ScriptedPlatformTest, anyCallCanThrowAnything) {
    Scripted::throwAt("getMax", std::make_exception_ptr(std::string("anything")));
    EXPECT_THROW(CommonUtil::getMaxPartitionNum(), std::string);
    EXPECT_THAT(calls(), testing::ElementsAre("getMaxPartitionNum"));
    Scripted::throwAt("getMax", nullptr);
    EXPECT_EQ(CommonUtil::getMaxPartitionNum(), 0u);
}

TEST_F(ScriptedPlatformTest, returnsScriptedUploadUntilFormIsTerminated) {
    script.uploadName = "name";
    script.uploadPath = "/path";
    script.uploadSize = 5;
    Gui::FormInfo form;
    EXPECT_EQ(form.getUploadFileName(), "name");
    EXPECT_EQ(form.getUploadFilePath(), "/path");
    EXPECT_EQ(form.getUploadFileSize(), 5u);
    form.terminate();
    EXPECT_EQ(form.getUploadFileName(), "");
    EXPECT_EQ(form.getUploadFilePath(), "");
    EXPECT_EQ(form.getUploadFileSize(), 0u);
    script.uploadPathError = 1103;
    EXPECT_EQ(thrownDetail([&] { form.getUploadFilePath(); }), 1103);
}

// Boards are unknown until the program has requested them.
TEST_F(ScriptedPlatformTest, fillsBoardsAndVersionsOnRequest) {
    script.setBoards({3}, {3});
    script.setVersions({"1.0", "2.0"});
    const VeskUi::HardInstallInfoPacket boards;
    EXPECT_FALSE(boards.isInstalled(0, 3));
    Gui::CGIRequester requester("the session");
    VeskUi::HardInstallInfoPacket answer;
    EXPECT_TRUE(requester.getInfo(0x02010021, answer));
    EXPECT_TRUE(answer.isInstalled(0, 3));
    EXPECT_TRUE(answer.isHome(0, 3, 0));
    VeskUi::VersionInfoPacket versions;
    EXPECT_EQ(versions.getBIOSVersion(1, 0), "-");
    EXPECT_TRUE(requester.getInfo(0x02010201, versions));
    EXPECT_EQ(versions.getBIOSVersion(1, 0), "2.0");
}

}  // namespace VeskLib::Test
