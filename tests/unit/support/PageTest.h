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

    Gui::CGIRequester requester{"the session"};
    Gui::FormInfo formInfo;
    Gui::MessageMgr messageMgr{0};
    int displayMode = 2;
};

}  // namespace VeskLib::Test
