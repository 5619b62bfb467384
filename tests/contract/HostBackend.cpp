#include "tests/contract/HostBackend.h"

#include "tests/contract/wire.h"

#include <VeskLib/getCGIPath.h>

#include <sys/socket.h>
#include <sys/un.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <iostream>
#include <sstream>
#include <stdexcept>

namespace VeskLib::Test {

namespace {

const std::size_t LENGTH_SIZE = 4;
const std::size_t NUMBER_OFFSET = 1;  // after the kind
const std::size_t TEXTS_OFFSET = 5;
const int TEXTS = 4;  // session, address of the client, identifier of the request, staged file
const unsigned char SET = 2;
const unsigned char END = 0xFF;  // stops this back-end; not a kind of the host's frames

sockaddr_un addressOf(const std::string& path) {
    sockaddr_un address = {};
    address.sun_family = AF_UNIX;
    if (path.size() >= sizeof address.sun_path) {
        throw std::runtime_error("the path of the back-end's socket is too long");
    }
    std::copy(path.begin(), path.end(), address.sun_path);
    return address;
}

int listenAt(const std::string& path) {
    static_cast<void>(::unlink(path.c_str()));
    const sockaddr_un address = addressOf(path);
    const int listener = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::bind(listener, reinterpret_cast<const sockaddr*>(&address), sizeof address) != 0 ||
        ::listen(listener, 8) != 0) {
        throw std::runtime_error("no back-end can listen at " + path);
    }
    return listener;
}

std::size_t readNumber(const Bytes& bytes, std::size_t offset, std::size_t size) {
    std::size_t number = 0;
    for (std::size_t i = 0; i < size; ++i) {
        number = number << 8 | bytes.at(offset + i);
    }
    return number;
}

void appendNumber(Bytes& bytes, std::size_t number) {
    for (int shift = 24; shift >= 0; shift -= 8) {
        bytes.push_back(static_cast<unsigned char>(number >> shift));
    }
}

// Reads `size` bytes, or fewer if the connection ends.
Bytes receive(int connection, std::size_t size) {
    Bytes bytes(size);
    std::size_t received = 0;
    while (received < size) {
        const ssize_t count = ::recv(connection, bytes.data() + received, size - received, 0);
        if (count <= 0) {
            break;
        }
        received += static_cast<std::size_t>(count);
    }
    bytes.resize(received);
    return bytes;
}

void send(int connection, const Bytes& bytes) {
    static_cast<void>(::send(connection, bytes.data(), bytes.size(), MSG_NOSIGNAL));
}

Bytes receiveFrame(int connection) {
    const Bytes length = receive(connection, LENGTH_SIZE);
    return length.size() < LENGTH_SIZE ? Bytes()
                                       : receive(connection, readNumber(length, 0, LENGTH_SIZE));
}

void sendReply(int connection, const BackendReply& reply) {
    Bytes frame;
    const bool answered = reply.kind == BackendReply::ANSWER;
    const std::size_t size = answered ? reply.object.size() : 0;
    appendNumber(frame, LENGTH_SIZE + size);
    appendNumber(frame, answered ? 0 : reply.errorCode);
    if (answered) {
        frame.insert(frame.end(), reply.object.begin(), reply.object.end());
    }
    send(connection, frame);
}

// Writes the request as one line, for stop().
void report(const Bytes& frame) {
    std::size_t offset = TEXTS_OFFSET;
    std::string session;
    for (int i = 0; i < TEXTS; ++i) {
        const std::size_t size = readNumber(frame, offset, 2);
        const auto start = frame.begin() + static_cast<std::ptrdiff_t>(offset + 2);
        if (i == 0) {
            session.assign(start, start + static_cast<std::ptrdiff_t>(size));
        }
        offset += 2 + size;
    }
    std::cout << readNumber(frame, NUMBER_OFFSET, 4) << " [" << session << "]";
    if (frame.at(0) == SET) {
        for (std::size_t i = offset; i < frame.size(); ++i) {
            std::cout << ' ' << static_cast<unsigned int>(frame[i]);
        }
    }
    std::cout << std::endl;
}

int serve(int listener, const std::vector<BackendReply>& replies) {
    std::size_t next = 0;
    for (;;) {
        const int connection = ::accept(listener, nullptr, nullptr);
        if (connection < 0) {
            return 1;
        }
        for (Bytes frame = receiveFrame(connection); !frame.empty();
             frame = receiveFrame(connection)) {
            if (frame[0] == END) {
                return 0;
            }
            report(frame);
            const BackendReply& reply = replies.at(std::min(next++, replies.size() - 1));
            if (reply.kind != BackendReply::SILENT) {
                sendReply(connection, reply);
            }
        }
        ::close(connection);
    }
}

BackendRequest parse(const std::string& line) {
    std::istringstream words(line);
    BackendRequest request;
    std::string text;
    words >> request.number >> text;
    request.sessionId = text.substr(1, text.size() - 2);
    for (unsigned int byte = 0; words >> byte;) {
        request.object.push_back(static_cast<unsigned char>(byte));
    }
    return request;
}

}  // namespace

HostBackend::HostBackend(const std::vector<BackendReply>& replies)
    : path(getCGIPath("/var/run/backend.sock")), listener(listenAt(path)) {
    process = std::make_unique<ChildProcess>([this, replies] { return serve(listener, replies); });
}

HostBackend::~HostBackend() {
    ::close(listener);
    static_cast<void>(::unlink(path.c_str()));
}

// The back-end accepts the connection with the END frame after all earlier ones, so no request is
// missed.
std::vector<BackendRequest> HostBackend::stop() {
    const sockaddr_un address = addressOf(path);
    const int connection = ::socket(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0);
    if (::connect(connection, reinterpret_cast<const sockaddr*>(&address), sizeof address) == 0) {
        send(connection, {0, 0, 0, 1, END});
    }
    const ChildResult result = process->wait();
    ::close(connection);
    std::vector<BackendRequest> requests;
    std::istringstream lines(result.output);
    for (std::string line; std::getline(lines, line);) {
        requests.push_back(parse(line));
    }
    return requests;
}

}  // namespace VeskLib::Test
