#pragma once

#include <VeskLib/PException.h>
#include <VeskLib/VeskUi/SerializableObject.h>

#include <gtest/gtest.h>

#include <memory>
#include <string>
#include <vector>

namespace VeskLib::Test {

using Bytes = std::vector<unsigned char>;

// Memory of exactly `size` bytes, so that the sanitizers see a byte read or written past its end.
// It is filled with 0xEE.
class ExactBuffer {
public:
    explicit ExactBuffer(std::size_t size);
    explicit ExactBuffer(const Bytes& bytes);

    unsigned char* data() { return memory.get(); }
    unsigned int length() const { return static_cast<unsigned int>(size); }
    Bytes bytes() const;

private:
    std::unique_ptr<unsigned char[]> memory;
    std::size_t size;
};

// What `object` writes into a buffer of just its size.
Bytes serialize(const VeskUi::SerializableObject& object);

// Has `object` read `bytes` and no byte more.
bool deserialize(VeskUi::SerializableObject& object, const Bytes& bytes);

// The first `size` bytes.
Bytes cut(const Bytes& bytes, std::size_t size);

// An exception's arguments as they were given; those that travel as texts as texts.
struct ExceptionArguments {
    std::vector<int> codes;
    std::vector<std::string> texts;
    std::vector<long> rest;

    bool operator==(const ExceptionArguments&) const = default;
};

// The arguments of `exception`, of which `textCount` are texts.
ExceptionArguments argumentsOf(const PException& exception, unsigned int textCount);

// The arguments of the exception that `operation` throws; a test failure when it throws nothing.
template <typename Operation>
ExceptionArguments thrownBy(Operation operation, unsigned int textCount) {
    try {
        operation();
    } catch (const PException& exception) {
        return argumentsOf(exception, textCount);
    }
    ADD_FAILURE() << "no PException";
    return {};
}

}  // namespace VeskLib::Test
