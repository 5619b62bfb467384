#pragma once

#include "tests/support/CGIResponse.h"
#include "tests/support/ChildProcess.h"

#include <VeskLib/Gui/AbstractConfigMain.h>

#include <functional>

namespace VeskLib::Test {

// A program of the board that runs a function of the test.
class TestMain : public Gui::AbstractConfigMain {
public:
    using Work = std::function<int(TestMain&)>;

    explicit TestMain(Work work);

    int individualProc() override;

    // Makes public what the platform offers to a program of the board.
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

// Runs a request in a child process, which exits with the result of exec().
ChildResult runRequest(const TestMain::Work& work, const Environment& environment);

// Return a GET or POST request, with a session's cookie if `cookieValue` is not empty.
Environment getRequest(const std::string& cookieValue = "");
Environment postRequest(const std::string& cookieValue = "");

}  // namespace VeskLib::Test
