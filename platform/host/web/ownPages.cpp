#include "platform/host/web/ownPages.h"

#include "platform/host/base/Environment.h"
#include "platform/host/session/Session.h"
#include "platform/host/web/requestChecks.h"

#include <string_view>

namespace VeskLib::Host {

namespace {

const std::string_view QUERY = "functionID=";

struct OwnPage {
    int function;
    const char* path;
};

const OwnPage PAGES[] = {
    {BACKUP_FUNCTION, "/maintenance/efi_backup_restore.cgi?functionID=105"},
    {RESTORE_FUNCTION, "/maintenance/efi_backup_restore.cgi?functionID=106"},
    {ACTIVITY_FUNCTION, "/activity.cgi"},
};

}  // namespace

std::string pageOfFunction(const std::string& number) {
    for (const OwnPage& page : PAGES) {
        if (number == std::to_string(page.function)) {
            return page.path;
        }
    }
    return {};
}

std::string wantedFunction() {
    std::string query = readEnvironment("QUERY_STRING");
    if (query.empty() && isPost()) {
        const std::string referer = readEnvironment("HTTP_REFERER");
        const std::size_t start = referer.find('?');
        query = start == std::string::npos ? "" : referer.substr(start + 1);
    }
    if (!query.starts_with(QUERY)) {
        return {};
    }
    const std::string number = query.substr(QUERY.size());
    return pageOfFunction(number).empty() ? "" : number;
}

std::string loginPath(const std::string& function) {
    return pageOfFunction(function).empty() ? "/login.cgi" : "/login.cgi?functionID=" + function;
}

}  // namespace VeskLib::Host
