#include <VeskLib/lmsg_getmsg.h>

#include "platform/host/text/Catalogue.h"
#include "platform/host/text/formatText.h"

#include <cstdarg>

namespace {

const std::size_t BUFFER_SIZE = 256;

}  // namespace

char* lmsg_getmsg(int number, char* buffer, ...) {
    using namespace VeskLib::Host;
    std::va_list arguments;
    va_start(arguments, buffer);
    formatText(buffer, BUFFER_SIZE, findText(ENGLISH, TextSet::TRACE, number), number, arguments);
    va_end(arguments);
    return buffer;
}
