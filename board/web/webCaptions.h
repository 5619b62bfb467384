#pragma once

namespace VeskLib::Board {

// The captions that the code of the board's web programs uses; those that only skeletons use are in
// the skeletons.
enum WebCaption : int {
    MENU_TITLE = 9002,
    REFUSAL_TITLE = 9010,

    ACTIVITY_TITLE = 9301,
    ROUND_SILENT = 9394,

    LOGIN_TITLE = 9100,
    LOGIN_REFUSED = 9104,
    BACKEND_SILENT = 9105,
    LOGIN_TOO_SOON = 9107,

    DOWNLOAD_NOT_ALLOWED = 9202,
    NOT_A_DOWNLOAD = 9203,
    NO_SUCH_BACKUP = 9204,
    MALFORMED_REQUEST = 9207,
    LOGOUT_NEEDS_BUTTON = 9211,
};

}  // namespace VeskLib::Board
