#include "platform/host/channel/Login.h"

#include "platform/host/channel/WireText.h"

#include <utility>

namespace VeskLib::Host {

std::vector<unsigned char> encode(const LoginRequest& login) {
    std::vector<unsigned char> bytes(wireTextSize(login.user) + wireTextSize(login.password) +
                                     wireTextSize(login.origin) + wireTextSize(login.device));
    VeskUi::WireWriter writer(bytes.data(), bytes.size());
    writeWireText(writer, login.user);
    writeWireText(writer, login.password);
    writeWireText(writer, login.origin);
    writeWireText(writer, login.device);
    return bytes;
}

std::vector<unsigned char> encode(const LoginAnswer& answer) {
    std::vector<unsigned char> bytes(wireTextSize(answer.device));
    VeskUi::WireWriter writer(bytes.data(), bytes.size());
    writeWireText(writer, answer.device);
    return bytes;
}

bool decode(const std::vector<unsigned char>& bytes, LoginRequest& login) {
    VeskUi::WireReader reader(bytes.data(), bytes.size());
    LoginRequest read;
    read.user = readWireText(reader);
    read.password = readWireText(reader);
    read.origin = readWireText(reader);
    read.device = readWireText(reader);
    if (reader.failed() || reader.remaining() != 0) {
        return false;
    }
    login = std::move(read);
    return true;
}

bool decode(const std::vector<unsigned char>& bytes, LoginAnswer& answer) {
    VeskUi::WireReader reader(bytes.data(), bytes.size());
    LoginAnswer read;
    read.device = readWireText(reader);
    if (reader.failed() || reader.remaining() != 0) {
        return false;
    }
    answer = std::move(read);
    return true;
}

}  // namespace VeskLib::Host
