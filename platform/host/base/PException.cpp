#include <VeskLib/PException.h>

namespace VeskLib {

PException::PException(unsigned char system, unsigned char subsystem, unsigned short module,
                       unsigned char severity, unsigned short detail, int messageNumber,
                       long argument1, long argument2, long argument3, long argument4,
                       long argument5, long argument6, long argument7, long argument8)
    : system(system),
      subsystem(subsystem),
      module(module),
      severity(severity),
      detail(detail),
      messageNumber(messageNumber),
      arguments{argument1, argument2, argument3, argument4,
                argument5, argument6, argument7, argument8} {
}

PException::~PException() = default;

int PException::getExceptionDetail() const {
    return detail;
}

unsigned char PException::getSystem() const {
    return system;
}

unsigned char PException::getSubsystem() const {
    return subsystem;
}

unsigned short PException::getModule() const {
    return module;
}

unsigned char PException::getSeverity() const {
    return severity;
}

int PException::getMessageNumber() const {
    return messageNumber;
}

long PException::getArgument(unsigned int index) const {
    return index < sizeof arguments / sizeof arguments[0] ? arguments[index] : 0;
}

}  // namespace VeskLib
