#pragma once

namespace VeskLib::Board {

// The captions that the board's web programs choose themselves; those that only their skeletons
// use stand in the skeletons.
enum WebCaption : int {
    LOGIN_TITLE = 9100,
    LOGIN_REFUSED = 9104,
    BACKEND_SILENT = 9105,

    MENU_TITLE = 9151,

    REFUSAL_TITLE = 9200,
    NOT_LOGGED_IN = 9201,
    DOWNLOAD_NOT_ALLOWED = 9202,
    NOT_A_DOWNLOAD = 9203,
    NO_SUCH_BACKUP = 9204,
    CROSS_SITE_POST = 9205,
    WRONG_METHOD = 9206,
    REQUEST_NOT_READABLE = 9207,
    INTERNAL_PROBLEM = 9208,
    LOGOUT_NEEDS_BUTTON = 9211,
};

}  // namespace VeskLib::Board
