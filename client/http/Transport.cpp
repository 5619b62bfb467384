#include "client/http/Transport.h"

#include "board/web/utf8.h"
#include "client/Failure.h"
#include "client/http/Answer.h"
#include "client/http/failures.h"
#include "client/interruption.h"

#include <algorithm>
#include <cstring>
#include <optional>

namespace Efictl {

namespace {

using Milliseconds = Schedule::Milliseconds;
using VeskLib::Board::percentEncode;

// Timeouts of a connection and of a whole request.
const Milliseconds LONGEST_CONNECT{10000};
const Milliseconds LONGEST_REQUEST{30000};

// How long a request may continue after a signal. The board may finish an aborted request after the
// logout has removed the session's files, and then leave a file.
const Milliseconds LONGEST_GRACE{3000};

// State for the callbacks of libcurl during a request.
struct Conversation {
    Answer answer;
    bool changes;
    int interruptionsBefore;
    std::optional<Schedule::Clock::time_point> interrupted;
};

std::size_t takeHeader(char* line, std::size_t size, std::size_t count, void* conversation) {
    const std::size_t length = size * count;
    return static_cast<Conversation*>(conversation)->answer.takeHeader({line, length}) ? length : 0;
}

std::size_t takeBody(char* bytes, std::size_t size, std::size_t count, void* conversation) {
    const std::size_t length = size * count;
    return static_cast<Conversation*>(conversation)->answer.takeBody({bytes, length}) ? length : 0;
}

// Returns 1 to abort the request: LONGEST_GRACE after the first signal, or at the second one. Only
// the second signal aborts a request that changes something, because its outcome would be unknown.
int watch(void* conversation, curl_off_t, curl_off_t, curl_off_t, curl_off_t) {
    auto& now = *static_cast<Conversation*>(conversation);
    const int signals = interruptions() - now.interruptionsBefore;
    if (signals != 1) {
        return signals > 1 ? 1 : 0;
    }
    if (!now.interrupted) {
        now.interrupted = Schedule::Clock::now();
    }
    const bool isOver = Schedule::Clock::now() - *now.interrupted > LONGEST_GRACE;
    return isOver && !now.changes ? 1 : 0;
}

// The read position in an uploaded file.
struct SentFile {
    const Bytes* bytes;
    std::size_t position;
};

std::size_t readFile(char* place, std::size_t size, std::size_t count, void* argument) {
    auto& file = *static_cast<SentFile*>(argument);
    const std::size_t length = std::min(size * count, file.bytes->size() - file.position);
    std::memcpy(place, file.bytes->data() + file.position, length);
    file.position += length;
    return length;
}

struct FormEnd {
    void operator()(curl_mime* form) const { curl_mime_free(form); }
};

std::unique_ptr<curl_mime, FormEnd> makeForm(CURL* handle, const Request& request, SentFile& file) {
    std::unique_ptr<curl_mime, FormEnd> form(curl_mime_init(handle));
    for (const auto& [name, value] : request.fields) {
        curl_mimepart* const part = curl_mime_addpart(form.get());
        curl_mime_name(part, name.c_str());
        curl_mime_data(part, value.data(), value.size());
    }
    curl_mimepart* const part = curl_mime_addpart(form.get());
    curl_mime_name(part, "filename");
    // The board requires the extension. Does not send the real name, because it may be private.
    curl_mime_filename(part, "configuration.dat");
    curl_mime_type(part, "application/octet-stream");
    curl_mime_data_cb(part, static_cast<curl_off_t>(file.bytes->size()), readFile, nullptr, nullptr,
                      &file);
    return form;
}

// Returns `fields` as a form of the type application/x-www-form-urlencoded.
std::string encodeForm(const Fields& fields) {
    std::string form;
    for (const auto& [name, value] : fields) {
        form += (form.empty() ? "" : "&") + percentEncode(name) + '=' + percentEncode(value);
    }
    return form;
}

}  // namespace

Transport::Transport(ConnectionOptions given, Schedule& schedule)
    : options(std::move(given)), schedule(schedule) {
    static const CURLcode READY = curl_global_init(CURL_GLOBAL_DEFAULT);
    handle.reset(READY == CURLE_OK ? curl_easy_init() : nullptr);
    if (handle == nullptr) {
        throw Failure(ExitCode::FAILED, "libcurl cannot be used.");
    }
}

Transport::~Transport() = default;

void Transport::setTimes() {
    const auto connect = std::min(schedule.left(), LONGEST_CONNECT);
    const auto whole = std::min(schedule.left(), LONGEST_REQUEST);
    curl_easy_setopt(handle.get(), CURLOPT_CONNECTTIMEOUT_MS, static_cast<long>(connect.count()));
    curl_easy_setopt(handle.get(), CURLOPT_TIMEOUT_MS, static_cast<long>(whole.count()));
}

void Transport::prepare(const Request& request, const std::string& form, Response& response) {
    response = {};
    CURL* const curl = handle.get();
    // Keeps connections and cookies.
    curl_easy_reset(curl);
    // The empty name enables cookies, in memory only.
    curl_easy_setopt(curl, CURLOPT_COOKIEFILE, "");
    curl_easy_setopt(curl, CURLOPT_URL, (options.board + request.path).c_str());
    curl_easy_setopt(curl, CURLOPT_PROTOCOLS_STR, "http,https");
    curl_easy_setopt(curl, CURLOPT_HTTP_VERSION, static_cast<long>(CURL_HTTP_VERSION_1_1));
    curl_easy_setopt(curl, CURLOPT_FOLLOWLOCATION, 0L);
    curl_easy_setopt(curl, CURLOPT_NOSIGNAL, 1L);
    curl_easy_setopt(curl, CURLOPT_QUICK_EXIT, 1L);
    curl_easy_setopt(curl, CURLOPT_ERRORBUFFER, reason);
    curl_easy_setopt(curl, CURLOPT_USERAGENT, "efictl/" EFICTL_VERSION);
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYPEER, options.verify ? 1L : 0L);
    curl_easy_setopt(curl, CURLOPT_SSL_VERIFYHOST, options.verify ? 2L : 0L);
    curl_easy_setopt(curl, CURLOPT_SSLVERSION, static_cast<long>(CURL_SSLVERSION_TLSv1_2));
    if (!options.certificates.empty()) {
        curl_easy_setopt(curl, CURLOPT_CAINFO, options.certificates.c_str());
        curl_easy_setopt(curl, CURLOPT_CAPATH, nullptr);
    }
    if (request.isPost && request.file == nullptr) {
        curl_easy_setopt(curl, CURLOPT_POSTFIELDSIZE, static_cast<long>(form.size()));
        curl_easy_setopt(curl, CURLOPT_POSTFIELDS, form.c_str());
    }
    // On a reused connection that the board has just closed, libcurl would send the request twice.
    curl_easy_setopt(curl, CURLOPT_FRESH_CONNECT, request.effect == Effect::NONE ? 0L : 1L);
    curl_easy_setopt(curl, CURLOPT_HEADERFUNCTION, takeHeader);
    curl_easy_setopt(curl, CURLOPT_WRITEFUNCTION, takeBody);
    curl_easy_setopt(curl, CURLOPT_XFERINFOFUNCTION, watch);
    curl_easy_setopt(curl, CURLOPT_NOPROGRESS, 0L);
    setTimes();
}

Response Transport::send(const Request& request) {
    if (!schedule.isCleaning()) {
        endWhenInterrupted();
    }
    Response response;
    const std::string form = encodeForm(request.fields);
    const Milliseconds left = schedule.left();
    if (left.count() == 0) {
        throw Failure(ExitCode::UNREACHABLE, options.board + " did not answer within --timeout.");
    }
    prepare(request, form, response);
    CURL* const curl = handle.get();
    Conversation conversation{Answer(response, request.limit), request.effect == Effect::CHANGES,
                              interruptions(), std::nullopt};
    curl_easy_setopt(curl, CURLOPT_HEADERDATA, &conversation);
    curl_easy_setopt(curl, CURLOPT_WRITEDATA, &conversation);
    curl_easy_setopt(curl, CURLOPT_XFERINFODATA, &conversation);
    struct ListEnd {
        void operator()(curl_slist* list) const { curl_slist_free_all(list); }
    };
    // Asks for texts in English, and sends bodies without waiting for "100 Continue".
    std::unique_ptr<curl_slist, ListEnd> headers(curl_slist_append(nullptr, "Accept-Language: en"));
    curl_slist_append(headers.get(), "Expect:");
    curl_easy_setopt(curl, CURLOPT_HTTPHEADER, headers.get());
    SentFile file{request.file, 0};
    std::unique_ptr<curl_mime, FormEnd> parts;
    if (request.file != nullptr) {
        parts = makeForm(curl, request, file);
        curl_easy_setopt(curl, CURLOPT_MIMEPOST, parts.get());
    }

    const CURLcode error = curl_easy_perform(curl);
    if (error == CURLE_OK) {
        curl_easy_getinfo(curl, CURLINFO_RESPONSE_CODE, &response.status);
        return response;
    }
    LostRequest lost;
    lost.error = error;
    lost.reason = reason;
    lost.effect = request.effect;
    lost.tooLarge = conversation.answer.isTooLarge();
    lost.hurried = error == CURLE_OPERATION_TIMEDOUT && left < LONGEST_REQUEST &&
                   schedule.left() < Milliseconds(100);
    curl_easy_getinfo(curl, CURLINFO_SSL_VERIFYRESULT, &lost.certificateError);
    if (error == CURLE_ABORTED_BY_CALLBACK && request.effect != Effect::CHANGES) {
        throw Failure(ExitCode::FAILED, "Interrupted before completion.");
    }
    throwLostRequest(lost, options.board);
}

bool Transport::hasCookie(std::string_view name) const {
    curl_slist* cookies = nullptr;
    curl_easy_getinfo(handle.get(), CURLINFO_COOKIELIST, &cookies);
    bool found = false;
    for (const curl_slist* each = cookies; each != nullptr; each = each->next) {
        // The name is the sixth of seven fields, separated by tabs.
        std::string_view line = each->data;
        for (int field = 0; field < 5; ++field) {
            line.remove_prefix(std::min(line.find('\t'), line.size() - 1) + 1);
        }
        std::string_view cookie = line.substr(0, line.find('\t'));
        if (cookie.starts_with("__Host-")) {
            cookie.remove_prefix(std::strlen("__Host-"));
        }
        found = found || cookie == name;
    }
    curl_slist_free_all(cookies);
    return found;
}

}  // namespace Efictl
