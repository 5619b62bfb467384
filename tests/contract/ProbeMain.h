#pragma once

#include "tests/contract/platformSpecifics.h"

#include <VeskLib/Gui/AbstractMain.h>

#include <functional>
#include <memory>
#include <string>

namespace VeskLib::Test {

// A main object that runs a test's function as its dispatcher and opens what pages cannot see.
class ProbeMain : public Gui::AbstractMain {
public:
    using Work = std::function<int(ProbeMain&)>;

    explicit ProbeMain(Work work = {});

    int individualProc() override;

    using AbstractMain::authority;
    using AbstractMain::errorExit;
    using AbstractMain::guiCheckSession;
    using AbstractMain::messageSet;
    using AbstractMain::sessionText;

    // Makes the request channel as the dispatcher does and returns it; the main object owns it.
    Gui::CGIRequester& connect();

    // Returns whether JudgeAuthority lets the user of the checked session use `function`, asked in
    // the order of the dispatcher. Needs connect() before.
    bool mayUse(int function);

private:
    Work work;
};

// Runs `work` as the dispatcher of a request, by exec() and in a child process. The method is GET
// unless `variables` has another.
ChildResult runRequest(const Environment& variables, const ProbeMain::Work& work);

// Runs `work` with the main object of a request, without exec(); its result is the child's status.
ChildResult runWithMain(const Environment& variables, const ProbeMain::Work& work);

// What follows the header of a CGI response; a test failure and "" if there is no header.
std::string bodyOf(const std::string& response);

}  // namespace VeskLib::Test
