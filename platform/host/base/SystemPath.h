#pragma once

#include <string>

namespace VeskLib::Host {

// Paths of the host platform's files and folders, before getCGIPath().
inline constexpr const char* CATALOGUE_FOLDER = "/usr/local/share/catalogue";
inline constexpr const char* SKELETON_FOLDER = "/usr/local/www/skel";
inline constexpr const char* SESSION_FOLDER = "/var/lib/session";
inline constexpr const char* LOGIN_LOCK = "/var/lib/login.lock";
inline constexpr const char* TRACE_FILE = "/var/log/trace.log";
inline constexpr const char* AUDIT_LOG = "/var/log/audit.log";
inline constexpr const char* AUDIT_LOCK = "/var/log/audit.lock";
inline constexpr const char* AUDIT_COUNTS = "/var/log/audit.counts";
inline constexpr const char* BACKEND_SOCKET = "/var/run/backend.sock";
inline constexpr const char* BOARD_PROPERTIES = "/var/run/board_properties";
inline constexpr const char* WEB_SERVER_HOSTS = "/var/run/hosts.conf";
inline constexpr const char* BACKUP_FILE = "/var/tmp/efi_backup";         // + session identifier
inline constexpr const char* STAGING_FILE = "/var/tmp/restored_eficonf";  // + session identifier
inline constexpr const char* UPLOAD_FILE = "/var/tmp/upload_";            // + random digits
inline constexpr const char* STAGING_LOCK_FILE = "/var/tmp/restored_eficonf.lock";

}  // namespace VeskLib::Host
