#pragma once

#include <cstddef>
#include <list>
#include <mutex>
#include <string>

namespace VeskLib::Board {

// The browsers that have logged in to an account before. Each has a random name for each account,
// of which only the SHA-256 sum is remembered, until the back-end ends. May be used by several
// threads.
class KnownDevices {
public:
    // Beyond these, the ones that have not been used for the longest time are forgotten.
    static constexpr std::size_t MOST_OF_ACCOUNT = 32;
    static constexpr std::size_t MOST_DEVICES = 4096;

    // Whether `device` was made for this account and is still remembered.
    bool isKnown(const std::string& account, const std::string& device);

    // The name of a browser that has just logged in. One that a browser brings is never taken over,
    // because another may know it. Throws PException without random numbers.
    std::string add(const std::string& account);

private:
    struct Device {
        std::string account;
        std::string sum;
    };

    void forgetOldest(const std::string& account);

    std::mutex guard;
    std::list<Device> devices;  // the last used first
};

}  // namespace VeskLib::Board
