#include "tests/scripted/Recorder.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <map>

namespace VeskLib::Scripted {

namespace {

struct Records {
    std::vector<std::string> calls;
    std::map<const void*, std::string> living;
    std::map<std::string, std::exception_ptr> exceptions;  // by the line's prefix
    unsigned int wrongDeletions = 0;
};

Records& records() {
    static Records instance;
    return instance;
}

}  // namespace

void record(const std::string& call) {
    records().calls.push_back(call);
    // Any platform call may change errno, so the program must read it before making one.
    errno = ENOTSUP;
    for (const auto& [beginning, exception] : records().exceptions) {
        if (exception != nullptr && call.starts_with(beginning)) {
            std::rethrow_exception(exception);
        }
    }
}

const std::vector<std::string>& recordedCalls() {
    return records().calls;
}

std::vector<std::string> recordedCalls(const std::vector<std::string>& beginnings) {
    std::vector<std::string> chosen;
    std::copy_if(records().calls.begin(), records().calls.end(), std::back_inserter(chosen),
                 [&](const std::string& call) {
                     return std::any_of(
                         beginnings.begin(), beginnings.end(),
                         [&](const std::string& beginning) { return call.starts_with(beginning); });
                 });
    return chosen;
}

void forgetCalls() {
    records().calls.clear();
}

void throwAt(const std::string& beginning, const std::exception_ptr& exception) {
    records().exceptions[beginning] = exception;
}

void forgetRecords() {
    records() = Records();
}

void objectMade(const void* object, const std::string& description) {
    record("new " + description);
    records().living[object] = description;
}

void objectDeleted(const void* object) {
    const auto found = records().living.find(object);
    if (found == records().living.end()) {
        ++records().wrongDeletions;
        record("delete of an object that is not alive");
        return;
    }
    record("delete " + found->second);
    records().living.erase(found);
}

std::vector<std::string> livingObjects() {
    std::vector<std::string> descriptions;
    for (const auto& entry : records().living) {
        descriptions.push_back(entry.second);
    }
    return descriptions;
}

unsigned int wrongDeletions() {
    return records().wrongDeletions;
}

std::string toText(const std::string& value) {
    return value;
}

std::string toText(const char* value) {
    return value;
}

std::string toText(bool value) {
    return value ? "true" : "false";
}

std::string toText(int value) {
    return std::to_string(value);
}

std::string toText(unsigned int value) {
    return std::to_string(value);
}

std::string toHexadecimal(unsigned int number) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%08X", number);
    return text;
}

std::string toHexadecimal(const std::vector<unsigned char>& bytes) {
    std::string text;
    for (const unsigned char byte : bytes) {
        char digits[4];
        std::snprintf(digits, sizeof digits, "%02X", byte);
        text += (text.empty() ? "" : " ") + std::string(digits);
    }
    return text;
}

}  // namespace VeskLib::Scripted
