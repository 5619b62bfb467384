#include "board/backend/KnownDevices.h"

#include "platform/host/base/randomText.h"
#include "platform/host/base/sha256.h"

#include <algorithm>

namespace VeskLib::Board {

namespace {

const std::size_t RANDOM_BYTES = 16;

}  // namespace

bool KnownDevices::isKnown(const std::string& account, const std::string& device) {
    if (device.empty()) {
        return false;
    }
    // Compares sums, so that the time it takes reveals nothing about the names.
    const std::string sum = Host::sha256Hex(device);
    const std::scoped_lock lock(guard);
    const auto found = std::find_if(devices.begin(), devices.end(), [&](const Device& each) {
        return each.account == account && each.sum == sum;
    });
    if (found == devices.end()) {
        return false;
    }
    devices.splice(devices.begin(), devices, found);
    return true;
}

std::string KnownDevices::add(const std::string& account) {
    const std::string device = Host::makeRandomText(RANDOM_BYTES);
    const std::scoped_lock lock(guard);
    devices.push_front({account, Host::sha256Hex(device)});
    forgetOldest(account);
    return device;
}

// Removes devices beyond the limits, after one was added to `account`.
void KnownDevices::forgetOldest(const std::string& account) {
    std::size_t ofAccount = 0;
    devices.remove_if([&](const Device& each) {
        return each.account == account && ++ofAccount > MOST_OF_ACCOUNT;
    });
    if (devices.size() > MOST_DEVICES) {
        devices.pop_back();
    }
}

}  // namespace VeskLib::Board
