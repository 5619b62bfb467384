#pragma once

#include "data/PrimitiveTypeArray.h"
#include "tests/scripted/Recorder.h"

#include <string>

namespace VeskLib::Test {

// A byte array that records its construction and deletion.
class CountedArray : public VeskUi::PrimitiveTypeArray<unsigned char> {
public:
    explicit CountedArray(const std::string& name) { Scripted::objectMade(this, name); }
    CountedArray(const CountedArray&) = delete;
    CountedArray& operator=(const CountedArray&) = delete;
    ~CountedArray() override { Scripted::objectDeleted(this); }
};

}  // namespace VeskLib::Test
