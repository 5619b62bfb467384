#pragma once

namespace VeskLib {

// The exception that the platform and the data containers throw.
//
// The eight trailing arguments are printf-style arguments for the message `messageNumber`. A
// string is passed as a pointer converted to `long`; it must outlive every copy of the exception,
// so use string literals. `long` is as wide as a pointer on every board (ILP32 and LP64).
class PException {
public:
    PException(unsigned char system, unsigned char subsystem, unsigned short module,
               unsigned char severity, unsigned short detail, int messageNumber, long argument1,
               long argument2, long argument3, long argument4, long argument5, long argument6,
               long argument7, long argument8);
    PException(const PException&) = default;
    PException& operator=(const PException&) = default;
    virtual ~PException();

    // Returns `detail`, the code that pages show after their message.
    int getExceptionDetail() const;

    // Return the other constructor arguments.
    unsigned char getSystem() const;
    unsigned char getSubsystem() const;
    unsigned short getModule() const;
    unsigned char getSeverity() const;
    int getMessageNumber() const;

    // Returns argument `index` of the message, 0 to 7; 0 for any other index.
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
