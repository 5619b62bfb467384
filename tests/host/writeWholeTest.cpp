#include "platform/host/base/writeWhole.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <string>
#include <thread>

namespace VeskLib::Test {

namespace {

// Returns a text without repetition, so that its pieces cannot be confused.
std::string countUpTo(int last) {
    std::string text;
    for (int number = 0; number < last; ++number) {
        text += std::to_string(number) + ",";
    }
    return text;
}

void ignoreSignal(int /*number*/) {
}

}  // namespace

class WriteWholeTest : public testing::Test {
protected:
    WriteWholeTest() {
        EXPECT_EQ(::pipe(ends), 0);
        EXPECT_GT(::fcntl(ends[1], F_SETPIPE_SZ, 4096), 0);
    }

    ~WriteWholeTest() override {
        ::close(ends[0]);
        ::close(ends[1]);
    }

    int ends[2] = {-1, -1};
};

// A signal makes write() return after a part of the text.
TEST_F(WriteWholeTest, writesWholeTextDespiteSignals) {
    struct sigaction interrupting = {};
    struct sigaction before = {};
    interrupting.sa_handler = ignoreSignal;
    ASSERT_EQ(::sigaction(SIGUSR1, &interrupting, &before), 0);
    const std::string first = countUpTo(10000);
    const std::string second = countUpTo(12345);
    const std::size_t whole = first.size() + second.size();

    bool written = false;
    std::thread writer([&] { written = Host::writeWhole(ends[1], first, second); });
    std::string received;
    while (received.size() < whole) {
        ::pthread_kill(writer.native_handle(), SIGUSR1);
        char piece[1000];
        const ssize_t count = ::read(ends[0], piece, sizeof piece);
        ASSERT_GT(count, 0);
        received.append(piece, static_cast<std::size_t>(count));
    }
    writer.join();
    ::sigaction(SIGUSR1, &before, nullptr);
    EXPECT_TRUE(written);
    EXPECT_TRUE(received == first + second);
}

TEST_F(WriteWholeTest, failsOnPartialWrite) {
    ASSERT_EQ(::fcntl(ends[1], F_SETFL, O_NONBLOCK), 0);
    EXPECT_FALSE(Host::writeWhole(ends[1], countUpTo(10000), "the end"));
    EXPECT_EQ(errno, EAGAIN);
}

TEST_F(WriteWholeTest, acceptsEmptyText) {
    EXPECT_TRUE(Host::writeWhole(-1, ""));
}

}  // namespace VeskLib::Test
