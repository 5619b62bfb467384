#pragma once

#include "tests/support/CGIResponse.h"
#include "tests/support/ChildProcess.h"

#include <VeskLib/Gui/AbstractConfigMain.h>

#include <functional>

namespace VeskLib::Test {

// A program of the board whose work a test gives.
class TestMain : public Gui::AbstractConfigMain {
public:
    using Work = std::function<int(TestMain&)>;

    explicit TestMain(Work work);

    int individualProc() override;

    // What a program of the board sees of the platform.
    using AbstractMain::authority;
    using AbstractMain::errorExit;
    using AbstractMain::guiCheckSession;
    using AbstractMain::messageSet;
    using AbstractMain::requester;
    using AbstractMain::sessionText;
    using AbstractMain::trace;

private:
    Work work;
};

// Runs a request in a process of its own; its exit status is what exec() returns.
ChildResult runRequest(const TestMain::Work& work, const Environment& environment);

// An ordinary request, and one that carries a session's cookie.
Environment getRequest(const std::string& cookieValue = "");
Environment postRequest(const std::string& cookieValue = "");

}  // namespace VeskLib::Test
