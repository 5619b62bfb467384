#include "data/containerExceptions.h"

namespace VeskLib::VeskUi {

namespace {

const unsigned char SYSTEM = 1;
const unsigned char SUBSYSTEM = 80;
const unsigned char SEVERITY = 1;
const unsigned short DETAIL = 1537;

long asArgument(const char* constantText) {
    return reinterpret_cast<long>(constantText);
}

}  // namespace

PException makeBufferTooSmall(unsigned short module, const char* text) {
    return {SYSTEM, SUBSYSTEM, module, SEVERITY, DETAIL, 20019, asArgument(text),
            0,      0,         0,      0,        0,      0,     0};
}

PException makeDifferentBufferSize(const char* operation) {
    return {SYSTEM,
            SUBSYSTEM,
            2560,
            SEVERITY,
            DETAIL,
            20010,
            asArgument(operation),
            asArgument("Different Buffer Size"),
            0,
            0,
            0,
            0,
            0,
            0};
}

}  // namespace VeskLib::VeskUi
