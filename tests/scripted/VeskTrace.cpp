#include <VeskLib/trace/VeskTrace.h>

#include "tests/scripted/Recorder.h"

using namespace VeskLib::Scripted;

namespace VeskLib::trace {

VeskTrace::VeskTrace(unsigned char system, unsigned char subsystem, unsigned short module)
    : system(system), subsystem(subsystem), module(module) {
    objectMade(this, describe("VeskTrace", static_cast<int>(system), static_cast<int>(subsystem),
                              static_cast<int>(module)));
}

VeskTrace::~VeskTrace() {
    objectDeleted(this);
}

void VeskTrace::putLog(unsigned char level, const char* text) {
    record("putLog " + std::to_string(level) + " " + text);
}

}  // namespace VeskLib::trace
