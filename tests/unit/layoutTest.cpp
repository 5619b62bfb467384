// Tests of the layout of classes: a board's libraries access members by their offsets. The offsets
// are taken from pointers to members, which the Itanium C++ ABI represents as offsets.

#include "data/HardInstallInfoPacket.h"
#include "data/PrimitiveTypeWrapper.h"
#include "html/HTMLContainer.h"
#include "html/HTMLItem.h"
#include "html/MetaTag.h"
#include "main/EFIBackupRestoreMain.h"
#include "pages/EFIBackupPage.h"
#include "pages/EFIBackupRestorePage.h"
#include "pages/EFIRestorePage.h"
#include "tests/unit/support/PageTest.h"
#include "tests/unit/support/TestPage.h"

#include <VeskLib/Gui/HTMLPage.h>

#include <cstring>
#include <type_traits>
#include <typeinfo>

namespace VeskLib::Test {

namespace {

using namespace Gui;
using namespace VeskUi;

using ComponentMap = std::map<std::string, HTMLComponent*>;
using ByteArray = PrimitiveTypeArray<unsigned char>;

struct Member {
    std::size_t offset;
    const std::type_info* type;
};

template <typename Class, typename Type>
Member memberOf(Type Class::*pointer) {
    std::ptrdiff_t offset = 0;
    static_assert(sizeof pointer == sizeof offset);
    std::memcpy(&offset, &pointer, sizeof offset);
    return {static_cast<std::size_t>(offset), &typeid(Type)};
}

// Returns the members of a class in the order in which Reveal lists them. References are left out,
// because there are no pointers to them.
template <typename Class>
std::vector<Member>& membersOf() {
    static std::vector<Member> members;
    return members;
}

// Fills membersOf<Class>() before main(). An explicit instantiation may name private members.
template <typename Class, auto... Pointers>
struct Reveal {
    static const bool filled;
};

template <typename Class, auto... Pointers>
const bool Reveal<Class, Pointers...>::filled = (membersOf<Class>() = {memberOf(Pointers)...},
                                                 true);

std::size_t roundUp(std::size_t offset, std::size_t alignment) {
    return (offset + alignment - 1) / alignment * alignment;
}

// Walks over the members of an object, and expects no gap between them except for alignment.
class Walk {
public:
    Walk(const std::vector<Member>& members, std::size_t begin) : members(members), end(begin) {}

    template <typename Type>
    void expectNext() {
        if constexpr (std::is_reference_v<Type>) {
            end = roundUp(end, alignof(void*)) + sizeof(void*);
            return;
        }
        using Object = std::remove_reference_t<Type>;
        ASSERT_LT(index, members.size());
        EXPECT_EQ(*members[index].type, typeid(Object)) << "member " << index;
        EXPECT_EQ(members[index].offset, roundUp(end, alignof(Object))) << "member " << index;
        end = roundUp(end, alignof(Object)) + sizeof(Object);
        ++index;
    }

    // Expects that no member is left, and returns the offset past the last one.
    std::size_t finish() const {
        EXPECT_EQ(index, members.size());
        return end;
    }

private:
    const std::vector<Member>& members;
    std::size_t end;
    std::size_t index = 0;
};

// Expects members of these types in this order, starting at offset `begin`, and returns the offset
// past the last one.
template <typename... Types>
std::size_t expectLayout(const std::vector<Member>& members, std::size_t begin) {
    Walk walk(members, begin);
    (walk.expectNext<Types>(), ...);
    return walk.finish();
}

template <typename Class>
void expectEnd(std::size_t end) {
    EXPECT_EQ(sizeof(Class), roundUp(end, alignof(Class)));
}

// Objects with virtual functions begin with a vtable pointer of this size.
const std::size_t VIRTUAL = sizeof(void*);

template struct Reveal<MetaTag, &MetaTag::name, &MetaTag::content, &MetaTag::contentUrl,
                       &MetaTag::reserved>;
template struct Reveal<HTMLContainer, &HTMLContainer::children, &HTMLContainer::breakBetween>;
template struct Reveal<HTMLItem, &HTMLItem::componentMap, &HTMLItem::generator>;
template struct Reveal<HTMLCodeGenerator, &HTMLCodeGenerator::skeletonFile,
                       &HTMLCodeGenerator::components>;
template struct Reveal<HTMLPage, &HTMLPage::componentMap, &HTMLPage::generator>;
template struct Reveal<AbstractMain, &AbstractMain::trace, &AbstractMain::formInfo,
                       &AbstractMain::requester, &AbstractMain::messageMgr,
                       &AbstractMain::functionId, &AbstractMain::messageSet,
                       &AbstractMain::authority, &AbstractMain::sessionText,
                       &AbstractMain::requestEnded, &AbstractMain::responseStatus>;
template struct Reveal<AbstractConfigMain, &AbstractConfigMain::title>;
template struct Reveal<
    CommonDefaultPage, &CommonDefaultPage::generator, &CommonDefaultPage::componentMap,
    &CommonDefaultPage::trace, &CommonDefaultPage::displayMode, &CommonDefaultPage::traceModule,
    &CommonDefaultPage::errorFlag, &CommonDefaultPage::alertFlag, &CommonDefaultPage::message>;
template struct Reveal<AbstractBackupRestorePage, &AbstractBackupRestorePage::functionNumber>;
template struct Reveal<EFIBackupPage, &EFIBackupPage::backupFilePath,
                       &EFIBackupPage::partitionInfo>;
template struct Reveal<EFIRestorePage, &EFIRestorePage::requestStatus,
                       &EFIRestorePage::restoreFinished, &EFIRestorePage::stagingFilePath,
                       &EFIRestorePage::stagingLockPath, &EFIRestorePage::partitionInfo,
                       &EFIRestorePage::hardInstallInfo>;
template struct Reveal<
    EFIBackupRestorePage, &EFIBackupRestorePage::processMode,
    &EFIBackupRestorePage::restoreFinished, &EFIBackupRestorePage::stagingFilePath,
    &EFIBackupRestorePage::stagingLockPath, &EFIBackupRestorePage::backupFilePath>;

std::size_t expectBaseLayout() {
    return expectLayout<HTMLCodeGenerator*, MessageMgr&, ComponentMap, trace::VeskTrace, int*, int,
                        bool, bool, std::string>(membersOf<CommonDefaultPage>(), VIRTUAL);
}

std::size_t expectPageLayout() {
    return expectLayout<CGIRequester&, FormInfo&, int>(membersOf<AbstractBackupRestorePage>(),
                                                       expectBaseLayout());
}

template <typename Class>
const void* pointerAt(const Class& object, std::size_t offset) {
    const void* pointer = nullptr;
    std::memcpy(&pointer, reinterpret_cast<const char*>(&object) + offset, sizeof pointer);
    return pointer;
}

}  // namespace

TEST(LayoutTest, componentsKeepLayout) {
    expectEnd<MetaTag>(expectLayout<std::string, std::string, std::string, std::string>(
        membersOf<MetaTag>(), VIRTUAL));
    expectEnd<HTMLContainer>(expectLayout<std::vector<std::unique_ptr<HTMLComponent>>, bool>(
        membersOf<HTMLContainer>(), VIRTUAL));
    expectEnd<HTMLItem>(
        expectLayout<ComponentMap, HTMLCodeGenerator>(membersOf<HTMLItem>(), VIRTUAL));
    expectEnd<HTMLCodeGenerator>(
        expectLayout<std::string, const ComponentMap*>(membersOf<HTMLCodeGenerator>(), VIRTUAL));
    expectEnd<HTMLPage>(
        expectLayout<ComponentMap, HTMLCodeGenerator*>(membersOf<HTMLPage>(), VIRTUAL));
}

// A board's library sees a container of unique_ptrs as one of raw pointers.
TEST(LayoutTest, uniquePtrHasLayoutOfRawPointer) {
    EXPECT_EQ(sizeof(std::unique_ptr<HTMLComponent>), sizeof(HTMLComponent*));
    EXPECT_EQ(sizeof(std::vector<std::unique_ptr<ByteArray>>), sizeof(std::vector<ByteArray*>));
    const auto component = std::make_unique<ProbeComponent>("name");
    EXPECT_EQ(pointerAt(component, 0), component.get());
}

TEST(LayoutTest, mainObjectKeepsLayout) {
    const std::size_t end =
        expectLayout<trace::VeskTrace, FormInfo*, CGIRequester*, MessageMgr*, int, int,
                     CGIAuthority, std::string, bool, int>(membersOf<AbstractMain>(), VIRTUAL);
    expectEnd<AbstractMain>(end);
    expectEnd<EFIBackupRestoreMain>(
        expectLayout<std::string>(membersOf<AbstractConfigMain>(), end));
}

class PageLayoutTest : public PageTest {};

TEST_F(PageLayoutTest, pageBasesKeepLayout) {
    const std::size_t base = expectBaseLayout();
    expectEnd<CommonDefaultPage>(base);
    expectEnd<AbstractBackupRestorePage>(expectPageLayout());
    const TestPage page(requester, formInfo, messageMgr, &displayMode, "/page.txt", 106);
    EXPECT_EQ(pointerAt(page, 2 * sizeof(void*)), &messageMgr);
    EXPECT_EQ(pointerAt(page, base), &requester);
    EXPECT_EQ(pointerAt(page, base + sizeof(void*)), &formInfo);
}

TEST_F(PageLayoutTest, pagesKeepLayout) {
    const std::size_t base = expectPageLayout();
    expectEnd<EFIBackupPage>(
        expectLayout<std::string, PartitionInfoPacket>(membersOf<EFIBackupPage>(), base));
    expectEnd<EFIRestorePage>(
        expectLayout<int, bool, std::string, std::string, PartitionInfoPacket,
                     HardInstallInfoPacket>(membersOf<EFIRestorePage>(), base));
    expectEnd<EFIBackupRestorePage>(expectLayout<int, bool, std::string, std::string, std::string>(
        membersOf<EFIBackupRestorePage>(), base));
}

TEST(LayoutTest, dataObjectsKeepLayout) {
    using Packet = HardInstallInfoPacket;
    using Collection = ComponentInfoCollection<ByteArray>;
    using Number = PrimitiveTypeWrapper<unsigned int>;
    expectEnd<Number>(expectLayout<unsigned int>({memberOf(&Number::value)}, VIRTUAL));
    expectEnd<ByteArray>(
        expectLayout<std::vector<unsigned char>>({memberOf(&ByteArray::records)}, VIRTUAL));
    expectEnd<Collection>(expectLayout<std::vector<std::unique_ptr<ByteArray>>>(
        {memberOf(&Collection::elements)}, VIRTUAL));
    expectEnd<Packet>(
        expectLayout<PrimitiveTypeArray<Packet::SBData>, Collection, Collection,
                     PrimitiveTypeArray<Packet::IOBData>, PrimitiveTypeArray<Packet::GSPBData>,
                     ByteArray[6]>({memberOf(&Packet::systemBoards), memberOf(&Packet::firstBoards),
                                    memberOf(&Packet::secondBoards), memberOf(&Packet::ioBoards),
                                    memberOf(&Packet::gspBoards), memberOf(&Packet::byteArrays)},
                                   VIRTUAL));
}

}  // namespace VeskLib::Test
