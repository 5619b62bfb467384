#pragma once

#include <VeskLib/PException.h>

namespace VeskLib::Host {

// What failed inside the host platform; the number is the exception's detail code, which the
// operator sees behind the message.
enum PlatformError : unsigned short {
    LOCK_NOT_OBTAINED = 1101,         // another request holds the lock for too long
    LOCK_NOT_USABLE = 1102,           // not a regular file of ours, or it cannot be made
    FILE_NOT_READABLE = 1103,         // cannot be opened or read
    NOT_A_CONFIGURATION_FILE = 1104,  // damaged, or something else
    SKELETON_NOT_USABLE = 1105,       // cannot be read, or a mark is malformed
    SESSION_NOT_STORED = 1106,        // the session cannot be written
    REQUEST_MALFORMED = 1107,         // query string or body
    REQUEST_TOO_LARGE = 1108,         // more or longer fields than the limits allow
    UPLOAD_NOT_STORED = 1109,         // the disk did not take an uploaded file
    NO_RANDOM_NUMBERS = 1110,         // the kernel gives none
    SESSION_NOT_READABLE = 1111,      // there is a session, but it cannot be read
    SESSION_NOT_ENDED = 1112,         // the session cannot be removed
    REQUEST_TOO_SLOW = 1113,          // the body does not come in time
    SESSION_FILE_REFUSED = 1114,      // a session's backup or staged file is not the board's own
    AUDIT_NOT_WRITTEN = 1115,         // the audit log takes no line
};

// `text` says what failed and must be constant text.
PException makePlatformException(PlatformError error, const char* text);

}  // namespace VeskLib::Host
