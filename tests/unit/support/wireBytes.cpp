#include "tests/unit/support/wireBytes.h"

#include <algorithm>
#include <cstddef>

namespace VeskLib::Test {

namespace {

const unsigned int ARGUMENT_COUNT = 8;

}  // namespace

ExactBuffer::ExactBuffer(std::size_t size) : memory(new unsigned char[size]), size(size) {
    std::fill_n(memory.get(), size, static_cast<unsigned char>(0xEE));
}

ExactBuffer::ExactBuffer(const Bytes& bytes) : ExactBuffer(bytes.size()) {
    std::copy(bytes.begin(), bytes.end(), memory.get());
}

Bytes ExactBuffer::bytes() const {
    return {memory.get(), memory.get() + size};
}

Bytes serialize(const VeskUi::SerializableObject& object) {
    ExactBuffer buffer(object.getSerializedSize());
    EXPECT_EQ(object.getSerialized(buffer.data(), buffer.length()), buffer.length());
    return buffer.bytes();
}

bool deserialize(VeskUi::SerializableObject& object, const Bytes& bytes) {
    ExactBuffer buffer(bytes);
    return object.setSerialized(buffer.data(), buffer.length());
}

Bytes cut(const Bytes& bytes, std::size_t size) {
    return {bytes.begin(), bytes.begin() + static_cast<std::ptrdiff_t>(size)};
}

ExceptionArguments argumentsOf(const PException& exception, unsigned int textCount) {
    ExceptionArguments arguments;
    arguments.codes = {exception.getSystem(),          exception.getSubsystem(),
                       exception.getModule(),          exception.getSeverity(),
                       exception.getExceptionDetail(), exception.getMessageNumber()};
    for (unsigned int index = 0; index < ARGUMENT_COUNT; ++index) {
        const long argument = exception.getArgument(index);
        if (index < textCount && argument != 0) {
            arguments.texts.emplace_back(reinterpret_cast<const char*>(argument));
        } else {
            arguments.rest.push_back(argument);
        }
    }
    return arguments;
}

}  // namespace VeskLib::Test
