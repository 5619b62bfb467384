#pragma once

namespace VeskLib::trace {

// The trace log of one part of the program, identified by the constructor's three numbers.
class VeskTrace {
public:
    VeskTrace(unsigned char system, unsigned char subsystem, unsigned short module);
    VeskTrace(const VeskTrace&) = delete;
    VeskTrace& operator=(const VeskTrace&) = delete;
    ~VeskTrace();

    // Appends one line. Level 0 is a failure. Never throws; ignores a log that cannot be written,
    // because the operator's request matters more.
    void putLog(unsigned char level, const char* text);

private:
    unsigned char system;
    unsigned char subsystem;
    unsigned short module;
};

}  // namespace VeskLib::trace
