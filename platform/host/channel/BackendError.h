#pragma once

namespace VeskLib::Host {

// The reasons for which the back-end refuses a request. The reply contains the number, and the
// operator sees it at the end of the message. Numbers are never reused.
enum BackendError : unsigned int {
    BACKEND_RESTORE_BUSY = 1047,          // another restore is under way
    BACKEND_FILE_UNUSABLE = 1539,         // damaged, absent or not a configuration file
    BACKEND_PARTITION_RUNNING = 1549,     // a target partition is running
    BACKEND_VERSION_DIFFERS = 1551,       // another major BIOS version than a target's
    BACKEND_NO_TARGETS = 1601,            // the list of targets is empty
    BACKEND_NO_PARTITION = 1602,          // not installed, or out of range
    BACKEND_NOT_STORED = 1603,            // the board's storage failed
    BACKEND_UNKNOWN_REQUEST = 1604,       // no such request number
    BACKEND_MALFORMED_REQUEST = 1605,     // the frame or its payload is malformed
    BACKEND_NO_SESSION = 1606,            // no valid session of a user of the board
    BACKEND_LOGIN_REFUSED = 1607,         // the name and the password do not match
    BACKEND_CONFIGURATION_SIZE = 1608,    // the file is larger than a target partition allows
    BACKEND_FAILED = 1609,                // the back-end itself failed, such as out of memory
    BACKEND_LOGIN_TOO_SOON = 1610,        // not checked: too many attempts are waiting
    BACKEND_NOT_ALLOWED = 1611,           // the session's user may not use the function
    BACKEND_NOT_RECORDED = 1612,          // the audit log cannot be written; nothing was changed
    BACKEND_OUTCOME_NOT_RECORDED = 1613,  // begun, but the audit log has no line about the outcome
    BACKEND_FAULTS_NOT_ALLOWED = 1614,    // CONTROL needs the option --allow-faults
    BACKEND_OTHER_FILE = 1615,            // the staged file is not the one that the page showed
    BACKEND_ABANDONED = 1616,             // the client was gone; nothing was changed
};

}  // namespace VeskLib::Host
