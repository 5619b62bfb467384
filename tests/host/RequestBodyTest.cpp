#include "platform/host/web/RequestBody.h"

#include "platform/host/base/platformException.h"
#include "tests/support/ChildProcess.h"
#include "tests/support/interruptOften.h"

#include <VeskLib/PException.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <chrono>
#include <thread>

namespace VeskLib::Test {

using Host::RequestBody;

namespace {

const int SHORT = 50;
const int LONG = 600000;
const int WITHOUT_AN_END = 20000;  // bytes, one per millisecond

// Reads a body from standard input within `milliseconds`. Returns 0, or the code of its refusal.
int endOf(int milliseconds) {
    try {
        RequestBody body(milliseconds);
        while (!body.next().empty()) {
        }
    } catch (const PException& exception) {
        return exception.getExceptionDetail();
    }
    return 0;
}

// Makes a pipe the standard input and returns its write end, or -1 on errors.
int makeInput() {
    int ends[2];
    return ::pipe(ends) == 0 && ::dup2(ends[0], STDIN_FILENO) == STDIN_FILENO ? ends[1] : -1;
}

}  // namespace

TEST(RequestBodyTest, rejectsMissingBodyAfterTimeout) {
    const ChildResult result = runInChild([] {
        makeInput();
        return endOf(SHORT) == Host::REQUEST_TOO_SLOW ? 0 : 1;
    });
    EXPECT_EQ(result.exitStatus, 0);
}

TEST(RequestBodyTest, doesNotExtendDeadlineForSlowBytes) {
    const ChildResult result = runInChild([] {
        const int end = makeInput();
        std::thread([end] {
            for (int i = 0; i < WITHOUT_AN_END && ::write(end, "a", 1) == 1; ++i) {
                std::this_thread::sleep_for(std::chrono::milliseconds(1));
            }
            ::close(end);
        }).detach();
        // A normal exit could be delayed by the thread.
        ::_exit(endOf(SHORT) == Host::REQUEST_TOO_SLOW ? 0 : 1);
        return 1;
    });
    EXPECT_EQ(result.exitStatus, 0);
}

TEST(RequestBodyTest, readsWholeBodyDespiteSignals) {
    const std::string body(100000, 'x');
    const ChildResult result = runInChild(
        [&body] {
            interruptOften();
            std::string read;
            RequestBody input(LONG);
            for (std::string_view piece = input.next(); !piece.empty(); piece = input.next()) {
                read += piece;
            }
            return read == body ? 0 : 1;
        },
        {.environment = {{"CONTENT_LENGTH", std::to_string(body.size())}}, .input = body});
    EXPECT_EQ(result.exitStatus, 0);
}

// The web server ends a request that is still arriving after 28 s.
TEST(RequestBodyTest, timesOutBeforeServer) {
    EXPECT_LT(RequestBody::DEADLINE_MILLISECONDS, 28000);
    EXPECT_GE(RequestBody::DEADLINE_MILLISECONDS, 20000);
}

}  // namespace VeskLib::Test
