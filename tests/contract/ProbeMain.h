#pragma once

#include "tests/contract/platformSpecifics.h"

#include <VeskLib/Gui/AbstractMain.h>

#include <functional>
#include <memory>
#include <string>

namespace VeskLib::Test {

// A main object that runs a test's function as its dispatcher and makes protected members public.
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

    // Creates the request channel as the dispatcher does and returns it. The main object owns it.
    Gui::CGIRequester& connect();

    // Returns true if JudgeAuthority lets the user of the checked session use `function`. Calls
    // JudgeAuthority in the same order as the dispatcher. connect() must have been called.
    bool mayUse(int function);

private:
    Work work;
};

// Runs `work` as the dispatcher of a request: in a child process, through exec(). The method is GET
// unless `variables` specifies another.
ChildResult runRequest(const Environment& variables, const ProbeMain::Work& work);

// Runs `work` with the main object of a request in a child process, without exec(). The result of
// `work` is the child's exit status.
ChildResult runWithMain(const Environment& variables, const ProbeMain::Work& work);

// Returns the body of a CGI response. Fails the test and returns "" if there is no header.
std::string bodyOf(const std::string& response);

}  // namespace VeskLib::Test
