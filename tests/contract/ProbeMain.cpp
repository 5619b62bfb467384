#include "tests/contract/ProbeMain.h"

#include <VeskLib/Gui/JudgeAuthority.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <utility>

namespace VeskLib::Test {

namespace {

const int WHOLE_SERVER = -1;

ChildSetup asSetup(const Environment& variables) {
    ChildSetup setup = {.environment = variables, .input = {}};
    setup.environment.emplace("REQUEST_METHOD", "GET");
    return setup;
}

}  // namespace

ProbeMain::ProbeMain(Work work) : work(std::move(work)) {
}

int ProbeMain::individualProc() {
    return work(*this);
}

Gui::CGIRequester& ProbeMain::connect() {
    requester = std::make_unique<Gui::CGIRequester>(sessionText.c_str()).release();
    return *requester;
}

bool ProbeMain::mayUse(int function) {
    Gui::JudgeAuthority judge(&authority, function, WHOLE_SERVER);
    return judge.preCheckDisplayMode(*requester) == 1 || judge.getDisplayMode() != 0;
}

ChildResult runRequest(const Environment& variables, const ProbeMain::Work& work) {
    return runInChild([&work] { return ProbeMain(work).exec(); }, asSetup(variables));
}

ChildResult runWithMain(const Environment& variables, const ProbeMain::Work& work) {
    return runInChild(
        [&work] {
            ProbeMain main;
            return work(main);
        },
        asSetup(variables));
}

std::string bodyOf(const std::string& response) {
    const std::size_t crlf = response.find("\r\n\r\n");
    const std::size_t lf = response.find("\n\n");
    if (crlf == std::string::npos && lf == std::string::npos) {
        ADD_FAILURE() << "no header: " << response;
        return "";
    }
    return crlf < lf ? response.substr(crlf + 4) : response.substr(lf + 2);
}

}  // namespace VeskLib::Test
