// Tests of vtables: the program and the board's libraries call each other's virtual functions by
// vtable slot. The slots are taken from pointers to member functions, as the Itanium C++ ABI lays
// them out.

#include "data/ComponentInfoCollection.h"
#include "data/PrimitiveTypeArray.h"
#include "data/PrimitiveTypeWrapper.h"
#include "html/HTMLContainer.h"
#include "html/HTMLItem.h"
#include "html/MetaTag.h"
#include "main/EFIBackupRestoreMain.h"
#include "pages/EFIBackupPage.h"
#include "pages/EFIBackupRestorePage.h"
#include "pages/EFIRestorePage.h"

#include <gmock/gmock.h>

#include <cstring>

namespace VeskLib::Test {

namespace {

// The two slots before these belong to the destructor.
const std::vector<std::size_t> THREE_OPERATIONS = {2, 3, 4};

template <typename Operation>
std::size_t placeOf(Operation operation) {
    std::size_t words[2];
    static_assert(sizeof operation == sizeof words);
    std::memcpy(words, &operation, sizeof words);
    // The offset in the vtable, plus one on processors that mark virtual functions here. ARM marks
    // them in the other word.
    return words[0] / sizeof(void*);
}

template <typename Class>
std::vector<std::size_t> placesInSerializable() {
    return {placeOf(&Class::getSerialized), placeOf(&Class::getSerializedSize),
            placeOf(&Class::setSerialized)};
}

template <typename Class>
std::vector<std::size_t> placesInComponent() {
    return {placeOf(&Class::printHTML), placeOf(&Class::isError)};
}

template <typename Class>
std::vector<std::size_t> placesInPage() {
    return {placeOf(&Class::printHTML), placeOf(&Class::isError), placeOf(&Class::makeDispPage),
            placeOf(&Class::makeConfigPage)};
}

}  // namespace

TEST(VirtualOperationsTest, serializableObjectsKeepSlots) {
    using ByteArray = VeskUi::PrimitiveTypeArray<unsigned char>;
    EXPECT_EQ(placesInSerializable<VeskUi::SerializableObject>(), THREE_OPERATIONS);
    EXPECT_EQ(placesInSerializable<VeskUi::PrimitiveTypeWrapper<unsigned int>>(), THREE_OPERATIONS);
    EXPECT_EQ(placesInSerializable<ByteArray>(), THREE_OPERATIONS);
    EXPECT_EQ(placesInSerializable<VeskUi::ComponentInfoCollection<ByteArray>>(), THREE_OPERATIONS);
}

TEST(VirtualOperationsTest, componentsKeepSlots) {
    const std::vector<std::size_t> expected = {2, 3};
    EXPECT_EQ(placesInComponent<Gui::HTMLComponent>(), expected);
    EXPECT_EQ(placesInComponent<Gui::MetaTag>(), expected);
    EXPECT_EQ(placesInComponent<Gui::HTMLContainer>(), expected);
    EXPECT_EQ(placesInComponent<Gui::HTMLItemInterface>(), expected);
    EXPECT_EQ(placesInComponent<Gui::HTMLItem>(), expected);
    EXPECT_EQ(placeOf(&Gui::HTMLItemInterface::add), 4u);
    EXPECT_EQ(placeOf(&Gui::HTMLItem::add), 4u);
}

TEST(VirtualOperationsTest, pagesKeepSlots) {
    const std::vector<std::size_t> expected = {2, 3, 4, 5};
    EXPECT_EQ(placesInPage<Gui::CommonDefaultPage>(), expected);
    EXPECT_EQ(placesInPage<Gui::AbstractBackupRestorePage>(), expected);
    EXPECT_EQ(placesInPage<Gui::EFIBackupPage>(), expected);
    EXPECT_EQ(placesInPage<Gui::EFIBackupRestorePage>(), expected);
    EXPECT_EQ(placesInPage<Gui::EFIRestorePage>(), expected);
}

TEST(VirtualOperationsTest, mainObjectKeepsSlots) {
    // The overload with a text and a number; the other one is not virtual.
    void (Gui::AbstractMain::*errorExit)(std::string, int) = &Gui::AbstractMain::errorExit;
    EXPECT_EQ(placeOf(errorExit), 2u);
    EXPECT_EQ(placeOf(&Gui::AbstractMain::individualProc), 3u);
    EXPECT_EQ(placeOf(&Gui::EFIBackupRestoreMain::individualProc), 3u);
}

}  // namespace VeskLib::Test
