#pragma once

#include <cstddef>
#include <list>
#include <mutex>
#include <string>

namespace VeskLib::Board {

// The browsers that have logged in to an account before. Each has a random name per account; only
// the SHA-256 sum of the name is stored, until the back-end ends. May be used by several threads.
class KnownDevices {
public:
    // Beyond these numbers, the least recently used devices are removed.
    static constexpr std::size_t MOST_OF_ACCOUNT = 32;
    static constexpr std::size_t MOST_DEVICES = 4096;

    // Returns true if `device` was made for this account and is still stored.
    bool isKnown(const std::string& account, const std::string& device);

    // Returns a new name for a browser that has just logged in. A name that a browser sends is
    // never adopted, because another browser may know it. Throws PException if there are no random
    // numbers.
    std::string add(const std::string& account);

private:
    struct Device {
        std::string account;
        std::string sum;
    };

    void forgetOldest(const std::string& account);

    std::mutex guard;
    std::list<Device> devices;  // the most recently used first
};

}  // namespace VeskLib::Board
