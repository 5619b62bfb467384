#pragma once

#include "client/Schedule.h"

#include <curl/curl.h>

#include <cstddef>
#include <memory>
#include <string>
#include <string_view>
#include <utility>
#include <vector>

namespace Efictl {

using Bytes = std::vector<unsigned char>;
using Fields = std::vector<std::pair<std::string, std::string>>;

// The largest page that efictl reads.
inline constexpr std::size_t LARGEST_PAGE = 448 * 1024;

// The effect of a request on the board.
enum class Effect {
    NONE,      // only reads; may be sent again
    PREPARES,  // creates a session or stages a file; is sent once
    CHANGES,   // is sent once and not aborted early, because its outcome would be unknown
};

struct Request {
    std::string path;     // with the query
    bool isPost = false;  // sends `fields`
    Fields fields;
    const Bytes* file = nullptr;  // sent as the field "filename", which makes the form multipart
    Effect effect = Effect::NONE;
    std::size_t limit = LARGEST_PAGE;
};

struct Response {
    long status = 0;
    std::string contentType;
    Bytes body;
};

struct ConnectionOptions {
    std::string board;         // "https://name:port", without a trailing slash
    std::string certificates;  // a file of PEM certificates to trust; empty for the system's
    bool verify = true;
};

// Sends requests to one board, one at a time, and keeps its cookies. Never sends a request twice,
// follows no redirection, and limits the size and the time of every response.
class Transport {
public:
    // `schedule` must outlive the transport.
    Transport(ConnectionOptions options, Schedule& schedule);
    Transport(const Transport&) = delete;
    Transport& operator=(const Transport&) = delete;
    ~Transport();

    // Sends a request and returns the response. Throws Failure: UNREACHABLE if there is none (a
    // PassingFailure if the request may be sent again); UNKNOWN if the request changes something
    // and may have arrived; FAILED if a signal interrupted it.
    Response send(const Request& request);

    // Returns true if the board has set a cookie of this name, with or without "__Host-".
    bool hasCookie(std::string_view name) const;

private:
    struct HandleEnd {
        void operator()(CURL* handle) const { curl_easy_cleanup(handle); }
    };

    void prepare(const Request& request, const std::string& form, Response& response);
    void setTimes();

    const ConnectionOptions options;
    Schedule& schedule;
    std::unique_ptr<CURL, HandleEnd> handle;
    char reason[CURL_ERROR_SIZE] = "";
};

}  // namespace Efictl
