#pragma once

#include <VeskLib/PException.h>
#include <VeskLib/VeskUi/SerializableObject.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <memory>
#include <string>
#include <vector>

namespace VeskLib::Test {

using Bytes = std::vector<unsigned char>;

// Memory of exactly `size` bytes, so that the sanitizers see a byte read or written past its end.
class ExactBuffer {
public:
    explicit ExactBuffer(std::size_t size) : memory(new unsigned char[size]), size(size) {
        std::fill_n(memory.get(), size, static_cast<unsigned char>(0xEE));
    }
    explicit ExactBuffer(const Bytes& bytes) : ExactBuffer(bytes.size()) {
        std::copy(bytes.begin(), bytes.end(), memory.get());
    }

    unsigned char* data() { return memory.get(); }
    unsigned int length() const { return static_cast<unsigned int>(size); }
    Bytes bytes() const { return {memory.get(), memory.get() + size}; }

private:
    std::unique_ptr<unsigned char[]> memory;
    std::size_t size;
};

// What `object` writes into a buffer of just its size.
inline Bytes serialize(const VeskUi::SerializableObject& object) {
    ExactBuffer buffer(object.getSerializedSize());
    EXPECT_EQ(object.getSerialized(buffer.data(), buffer.length()), buffer.length());
    return buffer.bytes();
}

// Has `object` read `bytes` and no byte more.
inline bool deserialize(VeskUi::SerializableObject& object, const Bytes& bytes) {
    ExactBuffer buffer(bytes);
    return object.setSerialized(buffer.data(), buffer.length());
}

// The first `size` bytes.
inline Bytes cut(const Bytes& bytes, std::size_t size) {
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

// An exception's arguments as they were given; those that travel as texts as texts.
struct ExceptionArguments {
    std::vector<int> codes;
    std::vector<std::string> texts;
    std::vector<long> rest;

    bool operator==(const ExceptionArguments&) const = default;
};

// The arguments of `exception`, of which `textCount` are texts.
inline ExceptionArguments argumentsOf(const PException& exception, unsigned int textCount) {
    ExceptionArguments arguments;
    arguments.codes = {exception.getSystem(),          exception.getSubsystem(),
                       exception.getModule(),          exception.getSeverity(),
                       exception.getExceptionDetail(), exception.getMessageNumber()};
    for (unsigned int index = 0; index < 8; ++index) {
        const long argument = exception.getArgument(index);
        if (index < textCount && argument != 0) {
            arguments.texts.emplace_back(reinterpret_cast<const char*>(argument));
        } else {
            arguments.rest.push_back(argument);
        }
    }
    return arguments;
}

// The arguments of the exception that `operation` throws; none when it throws nothing.
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
