#include "data/containerExceptions.h"

namespace VeskLib::VeskUi {

namespace {

const unsigned char SYSTEM = 1;
const unsigned char SUBSYSTEM = 80;
const unsigned char SEVERITY = 1;
const unsigned short DETAIL = 1537;
const unsigned short COLLECTION_MODULE = 2560;
const int BUFFER_TOO_SMALL = 20019;
const int DIFFERENT_BUFFER_SIZE = 20010;

long asArgument(const char* constantText) {
    return reinterpret_cast<long>(constantText);
}

}  // namespace

PException makeBufferTooSmall(unsigned short module, const char* text) {
    return {SYSTEM, SUBSYSTEM, module, SEVERITY, DETAIL, BUFFER_TOO_SMALL, asArgument(text), 0, 0,
            0,      0,         0,      0,        0};
}

PException makeDifferentBufferSize(const char* operation) {
    return {SYSTEM,
            SUBSYSTEM,
            COLLECTION_MODULE,
            SEVERITY,
            DETAIL,
            DIFFERENT_BUFFER_SIZE,
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
