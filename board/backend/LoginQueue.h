#pragma once

#include "board/backend/TokenBuckets.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <list>
#include <string>

namespace VeskLib::Board {

// Who asks to be let in.
struct LoginAttempt {
    std::string account;  // the name that was typed, whether or not there is such a user
    std::string address;
    std::string device = {};   // of a browser that has logged in to this account before
    std::string browser = {};  // what any other browser calls itself
    std::string guess = {};    // equal for equal passwords, and mostly different for others
};

// Decides which logins are looked at, in which order and when, so that passwords cannot be guessed
// quickly and whoever knows the right one still gets in. Has no clock and no threads of its own:
// see LoginThrottle.
//
// Attempts at one account are counted over all addresses, and once more by address, so that one
// address alone never takes what the account has. A browser that has logged in to the account
// before is counted by itself only. An attempt for which nothing is left waits.
class LoginQueue {
public:
    using Clock = TokenBuckets::Clock;
    using Time = TokenBuckets::Time;
    using Duration = Clock::duration;

    // Attempts that are free, and how long it takes until there is one more.
    static constexpr int ACCOUNT_ATTEMPTS = 10;
    static constexpr std::chrono::milliseconds ACCOUNT_INTERVAL{6000};
    static constexpr int ADDRESS_ATTEMPTS = 5;  // of one address at one account
    static constexpr std::chrono::milliseconds ADDRESS_INTERVAL{7500};
    static constexpr int DEVICE_ATTEMPTS = 5;
    static constexpr std::chrono::milliseconds DEVICE_INTERVAL{7500};

    // After so many failures at any accounts, everything from an address takes longer, which hurts
    // only who tries many names. One failure is forgotten each minute.
    static constexpr int ADDRESS_FAILURES = 10;
    static constexpr std::chrono::seconds FAILURE_MEMORY{60};
    static constexpr std::chrono::seconds FAILURE_DELAY{2};

    // How long an attempt waits before it is refused: with the hash, less than the client waits.
    static constexpr std::chrono::seconds LONGEST_WAIT{8};

    // How many wait, in all, of one address and of one device. When there are more, the oldest of
    // those that have the most is refused.
    static constexpr std::size_t MOST_WAITING = 48;
    static constexpr std::size_t MOST_OF_ADDRESS = 24;
    static constexpr std::size_t MOST_OF_DEVICE = 5;

    // Hashes are computed one after the other; the last of so many still comes in time.
    static constexpr std::size_t MOST_AT_WORK = 4;

    enum class State { WAITING, ADMITTED, REFUSED };

    class Entry {
    public:
        State state() const { return current; }

    private:
        friend class LoginQueue;

        LoginAttempt attempt;
        std::string pair;   // account and address
        std::string group;  // the attempts that make room for others together
        State current = State::WAITING;
        Time from;   // not to be admitted earlier
        Time until;  // refused then
    };

    // Puts an attempt into the queue, which decides at once if it can. The entry is the queue's and
    // lives until leave().
    Entry& arrive(const LoginAttempt& attempt, Time now);

    // Decides what has become decidable by `now`. Returns true if that was anything.
    bool advance(Time now);

    // When there is something to decide next; Time::max() when only after a leave().
    Time nextDecision() const { return decision; }

    // Ends an entry. `succeeded` says that it was admitted and the password was right; an admitted
    // entry without that counts as failed.
    void leave(Entry& entry, bool succeeded, Time now);

    // Nobody waits any more: what is not admitted at once is refused.
    void end();

    std::size_t waiting() const;

private:
    // How long it is remembered that a browser, or a password, has failed at an account.
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
