#pragma once

namespace VeskLib {

// What the platform and the data containers throw.
//
// The eight trailing arguments are printf-style arguments of the message `messageNumber`. A text
// travels in them as a pointer converted to `long`; it must point to constant text, which outlives
// every copy of the exception. `long` is as wide as a pointer on every board (ILP32 and LP64).
class PException {
public:
    PException(unsigned char system, unsigned char subsystem, unsigned short module,
               unsigned char severity, unsigned short detail, int messageNumber, long argument1,
               long argument2, long argument3, long argument4, long argument5, long argument6,
               long argument7, long argument8);
    PException(const PException&) = default;
    PException& operator=(const PException&) = default;
    virtual ~PException();

    // The detail code that pages show behind their message: the fifth constructor argument.
    int getExceptionDetail() const;

    // The other coded arguments, as they were given.
    unsigned char getSystem() const;
    unsigned char getSubsystem() const;
    unsigned short getModule() const;
    unsigned char getSeverity() const;
    int getMessageNumber() const;

    // Argument `index` of the message, 0 to 7; 0 for any other index.
    long getArgument(unsigned int index) const;

private:
    unsigned char system;
    unsigned char subsystem;
    unsigned short module;
    unsigned char severity;
    unsigned short detail;
    int messageNumber;
    long arguments[8];
};

static_assert(sizeof(long) >= sizeof(void*), "PException carries text pointers in its long fields");

}  // namespace VeskLib
