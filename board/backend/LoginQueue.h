#pragma once

#include "board/backend/TokenBuckets.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <list>
#include <string>

namespace VeskLib::Board {

// A request to log in.
struct LoginAttempt {
    std::string account;  // the name as typed, whether or not there is such a user
    std::string address;
    std::string device = {};   // of a browser that has logged in to this account before
    std::string browser = {};  // the name that any other browser sends
    std::string guess = {};    // the same for the same password, and mostly different for others
};

// Decides which logins are checked, in which order and when, so that passwords cannot be guessed
// quickly and users who know theirs still get in. Has neither a clock nor threads: see
// LoginThrottle.
//
// Attempts at an account are counted over all addresses, and also per address, so that one address
// cannot use up what the account has. A browser that has logged in to the account before is only
// counted by itself. An attempt without a free token waits.
class LoginQueue {
public:
    using Clock = TokenBuckets::Clock;
    using Time = TokenBuckets::Time;
    using Duration = Clock::duration;

    // The number of free attempts, and the time until there is one more.
    static constexpr int ACCOUNT_ATTEMPTS = 10;
    static constexpr std::chrono::milliseconds ACCOUNT_INTERVAL{6000};
    static constexpr int ADDRESS_ATTEMPTS = 5;  // by one address at one account
    static constexpr std::chrono::milliseconds ADDRESS_INTERVAL{7500};
    static constexpr int DEVICE_ATTEMPTS = 5;
    static constexpr std::chrono::milliseconds DEVICE_INTERVAL{7500};

    // After this many failures at any accounts, attempts from an address are delayed, which affects
    // only clients that try many names. One failure is forgotten each minute.
    static constexpr int ADDRESS_FAILURES = 10;
    static constexpr std::chrono::seconds FAILURE_MEMORY{60};
    static constexpr std::chrono::seconds FAILURE_DELAY{2};

    // How long an attempt waits before it is refused. Including the hash, this is less than the
    // client waits.
    static constexpr std::chrono::seconds LONGEST_WAIT{8};

    // How many attempts may wait in all, from one address and with one device. If an address or a
    // device has more, its own oldest attempt is refused; if there are more in all, the oldest one
    // of the largest group.
    static constexpr std::size_t MOST_WAITING = 48;
    static constexpr std::size_t MOST_OF_ADDRESS = 24;
    static constexpr std::size_t MOST_OF_DEVICE = 5;

    // Hashes are computed one after the other; the last of this many is still in time.
    static constexpr std::size_t MOST_AT_WORK = 4;

    enum class State { WAITING, ADMITTED, REFUSED };

    class Entry {
    public:
        State state() const { return current; }

    private:
        friend class LoginQueue;

        LoginAttempt attempt;
        std::string pair;   // account and address
        std::string group;  // attempts that compete for the same places
        State current = State::WAITING;
        Time from;   // not admitted earlier
        Time until;  // refused at this time
    };

    // Adds an attempt to the queue, which decides at once if it can. The entry belongs to the queue
    // and is valid until leave().
    Entry& arrive(const LoginAttempt& attempt, Time now);

    // Makes all decisions that are due at `now`. Returns true if there was any.
    bool advance(Time now);

    // Returns the time of the next decision; Time::max() if none is made before the next leave().
    Time nextDecision() const { return decision; }

    // Removes an entry. `succeeded` is true if it was admitted and the password was right;
    // otherwise an admitted entry counts as failed.
    void leave(Entry& entry, bool succeeded, Time now);

    // Refuses all waiting attempts, and from now on those that would have to wait.
    void end();

    std::size_t waiting() const;

private:
    // How long a browser's or a password's failure at an account is remembered.
    static constexpr std::chrono::minutes BROWSER_MEMORY{10};
    static constexpr std::chrono::minutes GUESS_MEMORY{60};

    static bool isWaiting(const Entry& entry) { return entry.current == State::WAITING; }

    std::size_t waitingOf(const std::string& group) const;
    void makeRoom(const Entry& newest);
    void refuseOldest(const std::string& group);
    std::string largestGroup() const;

    Time findNextDecision() const;
    Time admissible(const Entry& entry) const;
    std::array<Time, 4> rank(const Entry& entry, Time now) const;
    Entry* next(Time now);
    void admit(Entry& entry, Time now);

    TokenBuckets accounts{ACCOUNT_ATTEMPTS, ACCOUNT_INTERVAL};
    TokenBuckets pairs{ADDRESS_ATTEMPTS, ADDRESS_INTERVAL};
    TokenBuckets devices{DEVICE_ATTEMPTS, DEVICE_INTERVAL};
    TokenBuckets failures{ADDRESS_FAILURES, FAILURE_MEMORY};
    TokenBuckets browsers{1, BROWSER_MEMORY};
    TokenBuckets guesses{1, GUESS_MEMORY};
    std::list<Entry> entries;  // the newest last
    std::size_t atWork = 0;
    Time decision = Time::max();
    bool ended = false;
};

}  // namespace VeskLib::Board
