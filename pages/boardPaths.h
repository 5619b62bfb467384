#pragma once

// Paths on the board, before getCGIPath(), of the files that the pages use.
namespace VeskLib::Gui::BoardPaths {

// The session identifier is appended directly: one file per login session.
inline constexpr const char* STAGING_FILE = "/var/tmp/restored_eficonf";
inline constexpr const char* BACKUP_FILE = "/var/tmp/efi_backup";

// The lock for the staged files of all sessions.
inline constexpr const char* STAGING_LOCK = "/var/tmp/restored_eficonf.lock";

inline constexpr const char* BACKUP_SKELETON = "/usr/local/www/skel/skeleton_efi_backup.txt";
inline constexpr const char* BACKUP_ROW_SKELETON =
    "/usr/local/www/skel/skeleton_efi_backup_tbl.txt";
inline constexpr const char* UPLOAD_SKELETON = "/usr/local/www/skel/skeleton_efi_rstr.txt";
inline constexpr const char* SELECTION_SKELETON = "/usr/local/www/skel/skeleton_efi_rstr_slct.txt";
inline constexpr const char* SELECTION_ROW_SKELETON =
    "/usr/local/www/skel/skeleton_efi_rstr_slct_tbl.txt";

}  // namespace VeskLib::Gui::BoardPaths
