#include "client/board/BoardSession.h"

#include "client/Failure.h"
#include "client/board/repeat.h"
#include "platform/host/storage/ConfigurationFile.h"

namespace Efictl {

namespace {

const char* const SCREEN = "/maintenance/efi_backup_restore.cgi";
const char* const DOWNLOAD = "/common/download.cgi?";
const char* const BACKUP_FUNCTION = "105";
const char* const RESTORE_FUNCTION = "106";

// The board's message that reports a finished restore.
const int RESTORED = 70;
const int BUSY = 1047;
// Codes for a failed connection between the board's pages and their back-end. A retry may succeed.
const int FIRST_OF_BACKEND = 2001;
const int LAST_OF_BACKEND = 2003;

const char* const LOOK_AT_ACTIVITY =
    " Open the board's Activity page, /activity.cgi, before you try again.";

Request makePost(const char* path, Fields fields, Effect effect = Effect::NONE) {
    Request request;
    request.path = path;
    request.isPost = true;
    request.fields = std::move(fields);
    request.effect = effect;
    return request;
}

Request makeGet(const std::string& path) {
    Request request;
    request.path = path;
    return request;
}

std::string describeUnknownPage(const Request& request, const Response& response,
                                const std::string& title) {
    return std::string(request.isPost ? "POST " : "GET ") +
           request.path.substr(0, request.path.find('?')) + " was answered with status " +
           std::to_string(response.status) + " and a page of an unknown kind" +
           (response.contentType.empty() ? "" : " (" + response.contentType + ")") +
           (title.empty() ? "." : ": " + title + ".");
}

[[noreturn]] void throwUnknownPage(const Request& request, const Response& response,
                                   const std::string& title = "") {
    const std::string text = describeUnknownPage(request, response, title);
    if (request.effect == Effect::CHANGES) {
        throw Failure(ExitCode::UNKNOWN,
                      text + " It is not known whether the request was carried out.");
    }
    throw Failure(ExitCode::UNREACHABLE, text);
}

[[noreturn]] void throwRefusal(const Request& request, const Notice& notice) {
    const MessageNumber number = {notice.message, notice.code};
    const std::string text = notice.text.empty() ? "The board refused." : notice.text;
    if (request.effect == Effect::CHANGES) {
        throw Failure(notice.outcome == "unknown" ? ExitCode::UNKNOWN : ExitCode::REFUSED, text,
                      number);
    }
    if (notice.code == BUSY) {
        throw PassingFailure(ExitCode::REFUSED, text, PassingFailure::Cause::BUSY, number);
    }
    if (notice.code >= FIRST_OF_BACKEND && notice.code <= LAST_OF_BACKEND) {
        throw PassingFailure(ExitCode::REFUSED, text, PassingFailure::Cause::CONNECTION, number);
    }
    throw Failure(ExitCode::REFUSED, text, number);
}

}  // namespace

BoardSession::BoardSession(Transport& transport, Schedule& schedule, const Credentials& credentials)
    : transport(transport), schedule(schedule) {
    repeat(schedule, [&] { logIn(credentials); });
}

BoardSession::~BoardSession() {
    end();
}

void BoardSession::logIn(const Credentials& credentials) {
    const Request request =
        makePost("/login.cgi", {{"user", credentials.user}, {"password", credentials.password}},
                 Effect::PREPARES);
    const Response response = transport.send(request);
    if (response.status == 303 && transport.hasCookie("session")) {
        return;
    }
    const BoardPage page = read(request, response);
    throwUnknownPage(request, response, page.title);
}

// Parses the page of a response. Throws Failure if it is a refusal or an unknown page.
BoardPage BoardSession::read(const Request& request, const Response& response) const {
    if (!response.contentType.starts_with("text/html")) {
        throwUnknownPage(request, response);
    }
    BoardPage page;
    try {
        page = readBoardPage(
            {reinterpret_cast<const char*>(response.body.data()), response.body.size()});
    } catch (const Failure&) {
        if (request.effect == Effect::CHANGES) {
            throwUnknownPage(request, response);
        }
        throw;
    }
    const Notice* const notice = page.notice();
    if (notice != nullptr && (notice->outcome == "refused" || notice->outcome == "unknown")) {
        throwRefusal(request, *notice);
    }
    if (response.status != 200) {
        throwUnknownPage(request, response, page.title);
    }
    return page;
}

BoardPage BoardSession::ask(const Request& request) {
    return read(request, transport.send(request));
}

BoardPage BoardSession::menu() {
    const Request request = makeGet("/");
    BoardPage page = repeat(schedule, [&] { return ask(request); });
    if (!page.isMenu) {
        throwUnknownPage(request, {200, "text/html", {}}, page.title);
    }
    if (page.partitions.empty()) {
        // The menu lists no partitions for a user without rights; the screen gives the reason.
        requireScreen(BACKUP_FUNCTION);
    }
    return page;
}

void BoardSession::requireScreen(const char* function) {
    const Request request = makeGet(std::string(SCREEN) + "?functionID=" + function);
    repeat(schedule, [&] { ask(request); });
}

Bytes BoardSession::backUp(unsigned int partition) {
    const Request request = makePost(SCREEN, {{"functionID", BACKUP_FUNCTION},
                                              {"hidden_status", "BACKUP"},
                                              {"radio_button", std::to_string(partition)}});
    return repeat(schedule, [&] {
        const BoardPage page = ask(request);
        // Follows no link except to the board's own downloads.
        if (!page.downloadPath.starts_with(DOWNLOAD)) {
            throwUnknownPage(request, {200, "text/html", {}}, page.title);
        }
        Request download = makeGet(page.downloadPath);
        download.limit = VeskLib::Host::LARGEST_CONFIGURATION_FILE;
        Response response = transport.send(download);
        if (response.status != 200 || response.contentType != "application/octet-stream") {
            throwUnknownPage(download, response, read(download, response).title);
        }
        return std::move(response.body);
    });
}

Selection BoardSession::upload(const Bytes& file) {
    Request request = makePost(SCREEN, {{"functionID", RESTORE_FUNCTION}, {"hidden_status", "1"}},
                               Effect::PREPARES);
    request.file = &file;
    // Throws if the user may not restore, before the file is sent.
    requireScreen(RESTORE_FUNCTION);
    staged = true;
    const BoardPage page = ask(request);
    if (!page.selection) {
        throwUnknownPage(request, {200, "text/html", {}}, page.title);
    }
    return *page.selection;
}

void BoardSession::restore(const std::string& stagedFile,
                           const std::vector<unsigned int>& partitions) {
    Fields fields = {
        {"functionID", RESTORE_FUNCTION}, {"hidden_status", "2"}, {"staged_file", stagedFile}};
    for (const unsigned int partition : partitions) {
        fields.emplace_back("pid" + std::to_string(partition), std::to_string(partition));
    }
    const Request request = makePost(SCREEN, std::move(fields), Effect::CHANGES);
    try {
        const BoardPage page = ask(request);
        const Notice* const notice = page.notice();
        if (notice == nullptr || notice->outcome != "done" || notice->message != RESTORED) {
            throwUnknownPage(request, {200, "text/html", {}}, page.title);
        }
        staged = false;
    } catch (const Failure& failure) {
        if (failure.exitCode() == ExitCode::UNKNOWN && !failure.number()) {
            throw Failure(ExitCode::UNKNOWN, std::string(failure.what()) + LOOK_AT_ACTIVITY);
        }
        throw;
    }
}

std::string BoardSession::end() noexcept {
    if (ended) {
        return "";
    }
    ended = true;
    std::string left;
    try {
        if (staged) {
            schedule.beginCleanupStep();
            ask(makePost(SCREEN, {{"functionID", RESTORE_FUNCTION}, {"hidden_status", "3"}}));
        }
    } catch (const std::exception& error) {
        left = std::string("The uploaded file may stay on the board until the session ends: ") +
               error.what();
    }
    try {
        schedule.beginCleanupStep();
        const Response response = transport.send(makePost("/logout.cgi", {}));
        // 403: the session had already ended.
        if (response.status != 303 && response.status != 403) {
            left += (left.empty() ? "" : " ") +
                    describeUnknownPage(makePost("/logout.cgi", {}), response, "");
        }
    } catch (const std::exception& error) {
        left += (left.empty() ? "" : " ") +
                std::string("The logout failed; the session will end by itself: ") + error.what();
    }
    return left;
}

}  // namespace Efictl
