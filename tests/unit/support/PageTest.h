#pragma once

#include "tests/unit/support/ScriptedTest.h"

#include <VeskLib/Gui/CGIRequester.h>
#include <VeskLib/Gui/FormInfo.h>
#include <VeskLib/Gui/MessageMgr.h>

namespace VeskLib::Test {

// Fixture for tests of a page class, with the arguments of its constructor.
class PageTest : public ScriptedTest {
protected:
    PageTest() { Scripted::forgetCalls(); }

    // Deletes the page that `make` returns, and fails unless that frees everything that it made.
    // Returns the last two calls.
    template <typename Make>
    static Calls lastDeletions(Make make) {
        const Calls livingBefore = Scripted::livingObjects();
        auto page = make();
        page.reset();
        EXPECT_EQ(Scripted::livingObjects(), livingBefore);
        return {calls().end() - 2, calls().end()};
    }

    Gui::CGIRequester requester{"the session"};
    Gui::FormInfo formInfo;
    Gui::MessageMgr messageMgr{0};
    int displayMode = 2;
};

}  // namespace VeskLib::Test
