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

// Memory of exactly `size` bytes, so that the sanitizers detect accesses past its end.
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

// Returns the serialized form of `object`, written to a buffer of exactly its size.
inline Bytes serialize(const VeskUi::SerializableObject& object) {
    ExactBuffer buffer(object.getSerializedSize());
    EXPECT_EQ(object.getSerialized(buffer.data(), buffer.length()), buffer.length());
    return buffer.bytes();
}

// Deserializes `object` from a buffer of exactly `bytes`, and returns its result.
inline bool deserialize(VeskUi::SerializableObject& object, const Bytes& bytes) {
    ExactBuffer buffer(bytes);
    return object.setSerialized(buffer.data(), buffer.length());
}

// Returns the first `size` bytes.
inline Bytes cut(const Bytes& bytes, std::size_t size) {
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

// The arguments of an exception. Texts are compared by content.
struct ExceptionArguments {
    std::vector<int> codes;
    std::vector<std::string> texts;
    std::vector<long> rest;

    bool operator==(const ExceptionArguments&) const = default;
};

// Returns the arguments of `exception`; the first `textCount` of the variable ones are texts.
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

// Returns the arguments of the PException that `operation` throws. If it throws none, fails the
// test and returns no arguments.
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
