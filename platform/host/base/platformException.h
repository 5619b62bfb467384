#pragma once

#include <VeskLib/PException.h>

namespace VeskLib::Host {

// Errors of the host platform. The number is the exception's detail code, which the operator sees
// after the message.
enum PlatformError : unsigned short {
    LOCK_NOT_OBTAINED = 1101,         // another request has held the lock for too long
    LOCK_NOT_USABLE = 1102,           // cannot be created, or not a regular file of ours
    FILE_NOT_READABLE = 1103,         // cannot be opened or read
    NOT_A_CONFIGURATION_FILE = 1104,  // damaged, or another kind of file
    SKELETON_NOT_USABLE = 1105,       // cannot be read, or a mark is malformed
    SESSION_NOT_STORED = 1106,        // the session cannot be written
    REQUEST_MALFORMED = 1107,         // query string or body
    REQUEST_TOO_LARGE = 1108,         // more or longer fields than the limits allow
    UPLOAD_NOT_STORED = 1109,         // the uploaded file could not be written to disk
    NO_RANDOM_NUMBERS = 1110,         // getrandom() failed
    SESSION_NOT_READABLE = 1111,      // the session exists but cannot be read
    SESSION_NOT_ENDED = 1112,         // the session cannot be removed
    REQUEST_TOO_SLOW = 1113,          // the body did not arrive in time
    SESSION_FILE_REFUSED = 1114,      // a session's backup or staged file is not the board's own
    AUDIT_NOT_WRITTEN = 1115,         // no line can be written to the audit log
};

// Returns an exception with the detail code `error`. `text` describes the failure and must be a
// string literal.
PException makePlatformException(PlatformError error, const char* text);

}  // namespace VeskLib::Host
