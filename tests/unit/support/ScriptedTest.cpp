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
    // The process's form data, which the program makes and never deletes.
    delete Gui::FormInfo::myInstance;
    Gui::FormInfo::myInstance = nullptr;
    EXPECT_THAT(Scripted::livingObjects(), testing::IsEmpty());
    EXPECT_EQ(Scripted::wrongDeletions(), 0u);
}

}  // namespace VeskLib::Test
