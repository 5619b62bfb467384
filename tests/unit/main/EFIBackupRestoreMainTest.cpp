#include "main/EFIBackupRestoreMain.h"

#include "tests/unit/support/MainTest.h"

#include <array>
#include <new>

namespace VeskLib::Test {

using Gui::FormInfo;

class EFIBackupRestoreMainTest : public MainTest {};

TEST_F(EFIBackupRestoreMainTest, createsTraceLogAndFormAndReadsCookie) {
    const OpenMain object;
    EXPECT_THAT(calls(),
                testing::ElementsAre("new VeskTrace(1, 2, 29696)", "new FormInfo()", "getCookie"));
}

// Uses nonzero memory, so that an uninitialized field shows.
TEST_F(EFIBackupRestoreMainTest, initializesEveryField) {
    script.sessionText.reset();
    alignas(OpenMain) std::array<unsigned char, sizeof(OpenMain)> memory;
    memory.fill(0xA5);
    auto* object = new (memory.data()) OpenMain;
    EXPECT_EQ(object->formInfo, FormInfo::myInstance);
    EXPECT_EQ(object->requester, nullptr);
    EXPECT_EQ(object->messageMgr, nullptr);
    EXPECT_EQ(object->functionId, 159);
    EXPECT_EQ(object->messageSet, 0);
    EXPECT_EQ(object->authority.everyFunction, 0);
    EXPECT_EQ(object->authority.functions, nullptr);
    EXPECT_EQ(object->sessionText, "");
    EXPECT_FALSE(object->requestEnded);
    EXPECT_EQ(object->responseStatus, 0);
    EXPECT_EQ(object->title, "Backup/Restore BIOS Configuration");
    object->~OpenMain();
}

TEST_F(EFIBackupRestoreMainTest, takesSessionAndMessageSetFromCookie) {
    script.sessionText = "from the cookie";
    script.messageSet = 1;
    const OpenMain object;
    EXPECT_EQ(object.sessionText, "from the cookie");
    EXPECT_EQ(object.messageSet, 1);
}

TEST_F(EFIBackupRestoreMainTest, createsFormAndNeverDeletesIt) {
    ASSERT_EQ(FormInfo::myInstance, nullptr);
    { const OpenMain object; }
    EXPECT_NE(FormInfo::myInstance, nullptr);
    EXPECT_THAT(calls({"delete FormInfo"}), testing::IsEmpty());
}

TEST_F(EFIBackupRestoreMainTest, reusesExistingForm) {
    auto* present = new FormInfo;
    FormInfo::myInstance = present;
    const OpenMain first;
    const OpenMain second;
    EXPECT_EQ(first.formInfo, present);
    EXPECT_EQ(second.formInfo, present);
    EXPECT_EQ(FormInfo::myInstance, present);
    EXPECT_THAT(calls({"new FormInfo"}), testing::SizeIs(1));
}

TEST_F(EFIBackupRestoreMainTest, deletesOnlyWhatWasCreated) {
    { const OpenMain object; }
    EXPECT_THAT(calls({"delete"}), testing::ElementsAre("delete VeskTrace(1, 2, 29696)"));
}

TEST_F(EFIBackupRestoreMainTest, deletesChannelThenCatalogue) {
    {
        OpenMain object;
        object.messageMgr = new Gui::MessageMgr(0);
        object.requester = new Gui::CGIRequester("text");
    }
    EXPECT_THAT(calls({"delete"}),
                testing::ElementsAre("delete CGIRequester(text)", "delete MessageMgr(0)",
                                     "delete VeskTrace(1, 2, 29696)"));
}

TEST_F(EFIBackupRestoreMainTest, deletesChannelOrCatalogueAlone) {
    {
        OpenMain object;
        object.requester = new Gui::CGIRequester("text");
        OpenMain other;
        other.messageMgr = new Gui::MessageMgr(0);
    }
    EXPECT_THAT(calls({"delete CGI", "delete Mess"}),
                testing::ElementsAre("delete MessageMgr(0)", "delete CGIRequester(text)"));
}

// The destructors of classes derived from the channel and the catalogue run too.
TEST_F(EFIBackupRestoreMainTest, deletesThroughVirtualDestructors) {
    class DerivedRequester : public Gui::CGIRequester {
    public:
        DerivedRequester() : CGIRequester("text") { Scripted::record("derived channel"); }
        ~DerivedRequester() override { Scripted::record("derived channel ends"); }
    };
    class DerivedMessageMgr : public Gui::MessageMgr {
    public:
        DerivedMessageMgr() : MessageMgr(0) { Scripted::record("derived catalogue"); }
        ~DerivedMessageMgr() override { Scripted::record("derived catalogue ends"); }
    };
    std::unique_ptr<Gui::AbstractMain> object;
    {
        auto open = std::make_unique<OpenMain>();
        open->requester = new DerivedRequester;
        open->messageMgr = new DerivedMessageMgr;
        object = std::move(open);
    }
    object.reset();
    EXPECT_THAT(calls({"derived", "delete"}),
                testing::ElementsAre("derived channel", "derived catalogue", "derived channel ends",
                                     "delete CGIRequester(text)", "derived catalogue ends",
                                     "delete MessageMgr(0)", "delete VeskTrace(1, 2, 29696)"));
}

}  // namespace VeskLib::Test
