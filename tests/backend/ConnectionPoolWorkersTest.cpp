#include "platform/host/channel/FrameStream.h"
#include "tests/backend/support/PoolRunner.h"
#include "tests/backend/support/ScriptedServer.h"
#include "tests/backend/support/failures.h"
#include "tests/backend/support/requests.h"
#include "tests/support/files.h"
#include "tests/support/happensInTime.h"
#include "tests/support/sanitizers.h"

#include <gtest/gtest.h>
#include <poll.h>
#include <sys/socket.h>
#include <unistd.h>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <ctime>
#include <fstream>
#include <future>
#include <memory>
#include <mutex>
#include <optional>
#include <set>
#include <string>
#include <thread>
#include <vector>

namespace VeskLib::Test {

using namespace Board;
using namespace Host;

namespace {

const std::string TASKS = "/proc/self/task/";

// Returns the processor time of all threads.
std::chrono::milliseconds processorTime() {
    return std::chrono::milliseconds(std::clock() * 1000 / CLOCKS_PER_SEC);
}

// Fixture for tests of which threads serve which clients, and when the pool starts and ends
// threads.
class ConnectionPoolWorkersTest : public testing::Test {
protected:
    ConnectionPoolWorkersTest() {
        limits.requestMilliseconds = LONG;
        limits.endMilliseconds = LONG;
        // A sanitizer starts a thread of its own together with the program's first thread.
        std::string first;
        std::thread([&first] { first = std::to_string(::gettid()); }).join();
        EXPECT_TRUE(happensInTime([&first] { return !exists(TASKS + first); }));
        threadsBefore = namesIn(TASKS);
    }

    ~ConnectionPoolWorkersTest() override {
        release();
        pool.reset();
        for (const int client : clients) {
            ::close(client);
        }
    }

    void start() {
        pool = std::make_unique<PoolRunner>(
            [this](const RequestFrame& request, const IsAwaited& /*isAwaited*/) {
                return answer(request);
            },
            limits);
    }

    // Connects another client.
    int join() {
        clients.push_back(pool->connect());
        return clients.back();
    }

    // Disconnects the client.
    void leave(int client) {
        ::close(client);
        std::erase(clients, client);
    }

    static void ask(int client, std::uint32_t number = 0) {
        sendBytes(client, framed(encode(RequestFrame{RequestKind::GET, number, "", {7}})));
    }

    // Returns false if the connection is closed instead.
    bool isAnswered(int client) const { return receiveBytes(client, REPLY.size()) == REPLY; }

    bool exchange(int client) const {
        ask(client);
        return isAnswered(client);
    }

    // Lets the held requests continue.
    void release() {
        if (!released) {
            released = true;
            gate.set_value();
        }
    }

    // Returns the ids of the pool's threads, including the one that runs it.
    std::vector<std::string> poolThreads() const {
        std::vector<std::string> numbers = namesIn(TASKS);
        std::erase_if(numbers, [this](const std::string& number) {
            return std::ranges::find(threadsBefore, number) != threadsBefore.end();
        });
        return numbers;
    }

    bool hasWorkers(std::size_t count) const {
        return happensInTime([&] { return poolThreads().size() == count + 1; });
    }

    // Returns the context switch counters of the pool's threads.
    std::string sleeps() const {
        std::string found;
        for (const std::string& number : poolThreads()) {
            std::ifstream status(TASKS + number + "/status");
            for (std::string line; std::getline(status, line);) {
                found += line.find("ctxt_switches") == std::string::npos ? "" : line;
            }
        }
        return found;
    }

    // Returns true if the pool's threads go to sleep in time.
    bool sleepOn() const {
        return happensInTime([this] {
            const std::string before = sleeps();
            std::this_thread::sleep_for(std::chrono::milliseconds(200));
            return !before.empty() && sleeps() == before;
        });
    }

    const Bytes REPLY = framed(encode(ReplyFrame{0, {7}}));
    ConnectionLimits limits;
    std::unique_ptr<PoolRunner> pool;
    std::vector<int> clients;
    std::atomic<int> held = 0;
    std::mutex guard;
    std::set<pid_t> threads;  // those that have answered a request

private:
    ReplyFrame answer(const RequestFrame& request) {
        {
            const std::scoped_lock lock(guard);
            threads.insert(::gettid());
        }
        if (request.number == HELD_REQUEST) {
            ++held;
            opened.wait();
        }
        return {0, request.payload};
    }

    std::promise<void> gate;
    std::shared_future<void> opened = gate.get_future().share();
    bool released = false;
    std::vector<std::string> threadsBefore;
};

}  // namespace

TEST_F(ConnectionPoolWorkersTest, oneThreadServesSuccessiveClients) {
    limits.connections = 1;
    start();
    for (int round = 0; round < 5; ++round) {
        const int client = join();
        EXPECT_TRUE(exchange(client));
        leave(client);
    }
    EXPECT_EQ(threads.size(), 1U);
    EXPECT_NE(*threads.begin(), pool->supervisor());
}

TEST_F(ConnectionPoolWorkersTest, startsIdleThreadsBeforeFirstClient) {
    limits.idleWorkers = 3;
    start();
    EXPECT_TRUE(hasWorkers(3));
}

TEST_F(ConnectionPoolWorkersTest, limitsIdleThreadsToConnections) {
    limits.connections = 2;
    limits.idleWorkers = 3;
    start();
    EXPECT_TRUE(hasWorkers(2));
    EXPECT_TRUE(exchange(join()));
    EXPECT_TRUE(hasWorkers(2));
}

TEST_F(ConnectionPoolWorkersTest, startsThreadsForManyClientsAndEndsThemAfterwards) {
    limits.idleWorkers = 2;
    start();
    for (int count = 0; count < 6; ++count) {
        ask(join(), HELD_REQUEST);
    }
    EXPECT_TRUE(happensInTime([this] { return held == 6; }));
    EXPECT_TRUE(hasWorkers(7));  // one of them is idle
    release();
    while (!clients.empty()) {
        EXPECT_TRUE(isAnswered(clients.back()));
        leave(clients.back());
    }
    EXPECT_TRUE(hasWorkers(2));
    EXPECT_TRUE(exchange(join()));
}

TEST_F(ConnectionPoolWorkersTest, servesClientsWithoutSpareIdleThreads) {
    limits.idleWorkers = 0;
    start();
    for (int round = 0; round < 5; ++round) {
        const int client = join();
        EXPECT_TRUE(exchange(client));
        leave(client);
    }
    EXPECT_TRUE(hasWorkers(1));
}

TEST_F(ConnectionPoolWorkersTest, threadsSleepWhileNothingHappens) {
    start();
    EXPECT_TRUE(sleepOn());
    EXPECT_TRUE(exchange(join()));
    EXPECT_TRUE(sleepOn());
}

TEST_F(ConnectionPoolWorkersTest, threadsSleepWhileAllConnectionsAreTaken) {
    limits.connections = 2;
    start();
    EXPECT_TRUE(exchange(join()));
    EXPECT_TRUE(exchange(join()));
    EXPECT_TRUE(sleepOn());
}

TEST_F(ConnectionPoolWorkersTest, disconnectsQuietClientOnlyWhenAnotherWaits) {
    limits.connections = 1;
    limits.quietMilliseconds = 1;
    start();
    const int quiet = join();
    EXPECT_TRUE(exchange(quiet));
    EXPECT_TRUE(sleepOn());
    EXPECT_TRUE(exchange(quiet));
    EXPECT_TRUE(exchange(join()));
    EXPECT_FALSE(exchange(quiet));
}

TEST_F(ConnectionPoolWorkersTest, shutdownClosesConnectionsOfWaitingClients) {
    limits.connections = 1;
    start();
    const int served = join();
    ask(served, HELD_REQUEST);
    EXPECT_TRUE(happensInTime([this] { return held == 1; }));
    const int waiting = join();
    std::thread ending([this] { pool.reset(); });
    release();
    EXPECT_TRUE(isAnswered(served));
    EXPECT_FALSE(exchange(waiting));
    ending.join();
}

TEST_F(ConnectionPoolWorkersTest, servesClientOnceDescriptorsAreAvailableAgain) {
    if (SANITIZED) {
        GTEST_SKIP() << "the sanitizers need descriptors";
    }
    limits.connections = 1;
    start();
    const int first = join();
    EXPECT_TRUE(exchange(first));
    const int client = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    clients.push_back(client);
    std::optional<NoDescriptors> failure(std::in_place);
    leave(first);
    pool->connect(client);
    ask(client);
    const auto before = processorTime();
    EXPECT_FALSE(waitUntilReady(client, POLLIN, Deadline(500)));
    EXPECT_LT(processorTime() - before, std::chrono::milliseconds(100));  // no busy loop
    failure.reset();
    EXPECT_TRUE(isAnswered(client));
}

TEST_F(ConnectionPoolWorkersTest, shutsDownWithoutDescriptors) {
    if (SANITIZED) {
        GTEST_SKIP() << "the sanitizers need descriptors";
    }
    limits.connections = 1;
    start();
    const int client = join();
    EXPECT_TRUE(exchange(client));
    const NoDescriptors failure;
    leave(client);
    pool.reset();
}

TEST_F(ConnectionPoolWorkersTest, disconnectsClientsWhileNoThreadCanBeStarted) {
    std::optional<NoThreads> failure;
    limits.idleWorkers = 0;
    start();
    ASSERT_TRUE(hasWorkers(1));
    failure.emplace();
    const int last = join();
    EXPECT_TRUE(exchange(last));
    leave(last);
    ASSERT_TRUE(hasWorkers(0));
    EXPECT_FALSE(exchange(join()));
    EXPECT_FALSE(exchange(join()));
    EXPECT_TRUE(sleepOn());
    failure.reset();
    EXPECT_TRUE(exchange(join()));
}

TEST_F(ConnectionPoolWorkersTest, disconnectsQuietClientWhenNoThreadCanBeStarted) {
    limits.idleWorkers = 1;
    limits.quietMilliseconds = 1;
    start();
    ASSERT_TRUE(hasWorkers(1));
    const NoThreads failure;
    const int quiet = join();
    EXPECT_TRUE(exchange(quiet));
    EXPECT_TRUE(exchange(join()));
    EXPECT_FALSE(exchange(quiet));
}

}  // namespace VeskLib::Test
