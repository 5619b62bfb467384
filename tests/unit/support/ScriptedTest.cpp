#include "tests/unit/support/ScriptedTest.h"

#include <VeskLib/Gui/FormInfo.h>

#include <iostream>

namespace VeskLib::Test {

ScriptedTest::ScriptedTest()
    : script(Scripted::script()), standardOutput(std::cout.rdbuf(printed.rdbuf())) {
    Scripted::startScript();
}

ScriptedTest::~ScriptedTest() {
    Scripted::endScript();
    std::cout.rdbuf(standardOutput);
    // The program creates the form data of the process but never deletes it.
    delete Gui::FormInfo::myInstance;
    Gui::FormInfo::myInstance = nullptr;
    EXPECT_THAT(Scripted::livingObjects(), testing::IsEmpty());
    EXPECT_EQ(Scripted::wrongDeletions(), 0u);
}

}  // namespace VeskLib::Test
