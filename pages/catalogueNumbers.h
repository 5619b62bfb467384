#pragma once

// The board's text numbers and codes that the program uses. The texts on the board have these
// numbers, so do not change or reuse them.

// Messages to the operator: MessageMgr::getMessage().
namespace VeskLib::Gui::Messages {

inline constexpr int NO_PERMISSION = 12;
inline constexpr int UPLOAD_FAILED = 30;
inline constexpr int FILE_EMPTY = 33;
inline constexpr int FILE_NOT_STORED = 45;
inline constexpr int NO_PARTITION = 46;
inline constexpr int FILE_REFUSED = 63;
inline constexpr int FILE_UNUSABLE = 64;
inline constexpr int RESTORED = 70;
inline constexpr int RESTORE_FAILED = 71;
inline constexpr int BACKUP_FAILED = 72;
inline constexpr int PARTITION_RUNNING = 73;
inline constexpr int BACKEND_BUSY = 250;
inline constexpr int CONFIRM_RESTORE = 293;
inline constexpr int NOTHING_SELECTED = 303;
inline constexpr int VERSION_MISMATCH = 353;
inline constexpr int NO_FILE_CHOSEN = 354;

}  // namespace VeskLib::Gui::Messages

// Captions: MessageMgr::getString().
namespace VeskLib::Gui::Captions {

inline constexpr int PARTITION = 131;
inline constexpr int NUMBER = 132;
inline constexpr int PARTITION_NAME = 394;
inline constexpr int UPLOAD = 499;
inline constexpr int COMBINED_BACKUP_BUTTON = 971;
inline constexpr int SAVED_ON = 973;
inline constexpr int COMBINED_TITLE = 986;
inline constexpr int UPLOAD_INSTRUCTIONS = 1002;
inline constexpr int SELECTION_INSTRUCTIONS = 1003;
inline constexpr int ABOUT_THE_FILE = 1004;
inline constexpr int SELECT_ALL = 1005;
inline constexpr int BACK_UP = 1006;
inline constexpr int COMBINED_BACKUP_INSTRUCTIONS = 1356;
inline constexpr int COMBINED_RESTORE_INSTRUCTIONS = 1357;
inline constexpr int COMBINED_FILE_QUESTION = 1358;
inline constexpr int BIOS_VERSION = 1359;

}  // namespace VeskLib::Gui::Captions

// Texts of the message library, with their arguments: lmsg_getmsg().
namespace VeskLib::Gui::LibraryTexts {

inline constexpr int UNAVAILABLE = 107;            // the unavailable information
inline constexpr int UPLOAD_FAILURE = 20003;       // the operation
inline constexpr int SYSTEM_CALL_FAILURE = 20011;  // the operation, errno
inline constexpr int REFUSAL = 20020;              // the refused operation
inline constexpr int UNKNOWN_FUNCTION = 20034;     // the reason, the function number

}  // namespace VeskLib::Gui::LibraryTexts

// Codes at the end of a message, by which support finds the cause.
namespace VeskLib::Gui::Details {

inline constexpr int NONE = 0;
inline constexpr int INVALID = 1026;
inline constexpr int INVALID_SIZE = 1028;
inline constexpr int NO_AUTHORITY = 1033;
inline constexpr int MOVE_FAILED = 1043;

}  // namespace VeskLib::Gui::Details

// Error codes of the back-end that have their own message.
namespace VeskLib::Gui::ErrorCodes {

inline constexpr int BACKEND_BUSY = 1047;
inline constexpr int FILE_UNUSABLE = 1539;
inline constexpr int PARTITION_RUNNING = 1549;
inline constexpr int VERSION_MISMATCH = 1551;

}  // namespace VeskLib::Gui::ErrorCodes
