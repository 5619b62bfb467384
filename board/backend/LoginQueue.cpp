#include "board/backend/LoginQueue.h"

#include <arpa/inet.h>

#include <algorithm>
#include <cstring>
#include <map>

namespace VeskLib::Board {

namespace {

// Longer names and addresses do not exist, and are cut to save memory.
const std::size_t LONGEST_ACCOUNT = 256;
const std::size_t LONGEST_ADDRESS = 64;
const std::size_t NETWORK_BYTES = 8;

// Anybody with one IPv6 address has all 2^64 of its network, which therefore count as one.
std::string sourceOf(const std::string& address) {
    in6_addr binary = {};
    if (::inet_pton(AF_INET6, address.c_str(), &binary) == 1 && !IN6_IS_ADDR_V4MAPPED(&binary)) {
        return {reinterpret_cast<const char*>(binary.s6_addr), NETWORK_BYTES};
    }
    return address.substr(0, LONGEST_ADDRESS);
}

// Joins two texts. The length of the first makes keys of different pairs different.
std::string keyOf(const std::string& account, const std::string& other) {
    return std::to_string(account.size()) + ":" + account + other;
}

}  // namespace

LoginQueue::Entry& LoginQueue::arrive(const LoginAttempt& attempt, Time now) {
    Entry entry;
    entry.attempt.account = attempt.account.substr(0, LONGEST_ACCOUNT);
    entry.attempt.address = sourceOf(attempt.address);
    entry.pair = keyOf(entry.attempt.account, entry.attempt.address);
    if (attempt.device.empty()) {
        entry.group = "address " + entry.attempt.address;
        entry.attempt.browser =
            attempt.browser.empty() ? "" : keyOf(entry.attempt.account, attempt.browser);
        entry.attempt.guess = keyOf(entry.attempt.account, attempt.guess);
        entry.from = failures.nextToken(entry.attempt.address) > now ? now + FAILURE_DELAY : now;
    } else {
        entry.attempt.device = keyOf(entry.attempt.account, attempt.device);
        entry.group = "device " + entry.attempt.device;
        entry.from = now;
    }
    entry.until = now + LONGEST_WAIT;
    entries.push_back(entry);
    advance(now);
    Entry& newest = entries.back();
    if (isWaiting(newest) && ended) {
        newest.current = State::REFUSED;
    } else if (isWaiting(newest)) {
        makeRoom(newest);
    }
    return newest;
}

bool LoginQueue::advance(Time now) {
    bool decided = false;
    for (Entry& entry : entries) {
        if (isWaiting(entry) && entry.until <= now) {
            entry.current = State::REFUSED;
            decided = true;
        }
    }
    while (Entry* entry = next(now)) {
        admit(*entry, now);
        decided = true;
    }
    decision = findNextDecision();
    return decided;
}

LoginQueue::Time LoginQueue::findNextDecision() const {
    Time earliest = Time::max();
    for (const Entry& entry : entries) {
        if (isWaiting(entry)) {
            earliest = std::min(earliest, entry.until);
            if (atWork < MOST_AT_WORK) {
                earliest = std::min(earliest, admissible(entry));
            }
        }
    }
    return earliest;
}

void LoginQueue::leave(Entry& entry, bool succeeded, Time now) {
    if (entry.current == State::ADMITTED) {
        --atWork;
        const LoginAttempt& attempt = entry.attempt;
        if (!attempt.device.empty()) {
            if (succeeded) {
                devices.fill(attempt.device);
            }
        } else if (succeeded) {
            // Returns only this attempt's token, because others may be guessing at the same time.
            accounts.giveBack(attempt.account);
            pairs.fill(entry.pair);
        } else {
            failures.take(attempt.address, now);
            guesses.take(attempt.guess, now);
            if (!attempt.browser.empty()) {
                browsers.take(attempt.browser, now);
            }
        }
    }
    entries.remove_if([&entry](const Entry& each) { return &each == &entry; });
    advance(now);
}

void LoginQueue::end() {
    ended = true;
    for (Entry& entry : entries) {
        if (isWaiting(entry)) {
            entry.current = State::REFUSED;
        }
    }
}

std::size_t LoginQueue::waiting() const {
    return static_cast<std::size_t>(std::count_if(entries.begin(), entries.end(), isWaiting));
}

std::size_t LoginQueue::waitingOf(const std::string& group) const {
    return static_cast<std::size_t>(std::count_if(
        entries.begin(), entries.end(),
        [&group](const Entry& entry) { return isWaiting(entry) && entry.group == group; }));
}

void LoginQueue::makeRoom(const Entry& newest) {
    const std::size_t most = newest.attempt.device.empty() ? MOST_OF_ADDRESS : MOST_OF_DEVICE;
    if (waitingOf(newest.group) > most) {
        refuseOldest(newest.group);
    } else if (waiting() > MOST_WAITING) {
        refuseOldest(largestGroup());
    }
}

void LoginQueue::refuseOldest(const std::string& group) {
    const auto oldest = std::find_if(entries.begin(), entries.end(), [&group](const Entry& entry) {
        return isWaiting(entry) && entry.group == group;
    });
    if (oldest != entries.end()) {
        oldest->current = State::REFUSED;
    }
}

// Returns the largest group; of several, the one that has waited longest. A known browser's group
// makes room only if every waiting attempt is from a known browser: those are few.
std::string LoginQueue::largestGroup() const {
    std::string largest;
    std::size_t most = 0;
    for (const Entry& entry : entries) {
        const bool known = !entry.attempt.device.empty();
        const std::size_t size =
            isWaiting(entry) ? waitingOf(entry.group) + (known ? 0 : MOST_WAITING) : 0;
        if (size > most) {
            most = size;
            largest = entry.group;
        }
    }
    return largest;
}

// Returns the earliest time at which the entry may be admitted.
LoginQueue::Time LoginQueue::admissible(const Entry& entry) const {
    const LoginAttempt& attempt = entry.attempt;
    if (!attempt.device.empty()) {
        return std::max(entry.from, devices.nextToken(attempt.device));
    }
    return std::max({entry.from, accounts.nextToken(attempt.account), pairs.nextToken(entry.pair)});
}

// Returns the entry's sort key, most significant part first; the smallest key is admitted first. A
// client that repeats one wrong password, or that is not a browser, comes after the others.
std::array<LoginQueue::Time, 4> LoginQueue::rank(const Entry& entry, Time now) const {
    const LoginAttempt& attempt = entry.attempt;
    return {attempt.device.empty() ? Time::max() : Time::min(), pairs.fullFrom(entry.pair, now),
            guesses.fullFrom(attempt.guess, now),
            attempt.browser.empty() ? Time::max() : browsers.fullFrom(attempt.browser, now)};
}

// Returns the entry to admit at `now`, or null. Of equal entries it is the newest, which is the
// last, because a client that floods the queue would otherwise always come first.
LoginQueue::Entry* LoginQueue::next(Time now) {
    Entry* best = nullptr;
    if (atWork < MOST_AT_WORK) {
        for (Entry& entry : entries) {
            if (isWaiting(entry) && admissible(entry) <= now &&
                (best == nullptr || rank(entry, now) <= rank(*best, now))) {
                best = &entry;
            }
        }
    }
    return best;
}

void LoginQueue::admit(Entry& entry, Time now) {
    const LoginAttempt& attempt = entry.attempt;
    if (attempt.device.empty()) {
        accounts.take(attempt.account, now);
        pairs.take(entry.pair, now);
    } else {
        devices.take(attempt.device, now);
    }
    entry.current = State::ADMITTED;
    ++atWork;
}

}  // namespace VeskLib::Board
