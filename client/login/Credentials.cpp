#include "client/login/Credentials.h"

#include "client/Failure.h"
#include "client/login/netrc.h"
#include "platform/host/base/Descriptor.h"
#include "platform/host/base/Environment.h"

#include <fcntl.h>
#include <sys/stat.h>
#include <termios.h>
#include <unistd.h>

#include <cerrno>
#include <cstring>
#include <optional>

namespace Efictl {

namespace {

using VeskLib::Host::Descriptor;
using VeskLib::Host::readEnvironment;

const std::size_t LARGEST_SECRET_FILE = 64 * 1024;

// Reads a file or a pipe. Returns nothing if it is absent and `mayBeAbsent` is true.
std::optional<std::string> readSecret(const std::string& path, bool mayBeAbsent) {
    const Descriptor file(open(path.c_str(), O_RDONLY | O_CLOEXEC));
    struct stat status = {};
    if (!file.isOpen() && mayBeAbsent && errno == ENOENT) {
        return std::nullopt;
    }
    if (!file.isOpen() || fstat(file.get(), &status) != 0) {
        throw Failure(ExitCode::FAILED, path + " cannot be read: " + std::strerror(errno) + ".");
    }
    if (S_ISREG(status.st_mode) && (status.st_mode & S_IRWXO) != 0) {
        throw Failure(ExitCode::FAILED, path +
                                            " contains a password and is open to every user. Run: "
                                            "chmod o= '" +
                                            path + "'");
    }
    std::string text;
    char piece[4096];
    ssize_t length = 0;
    while ((length = read(file.get(), piece, sizeof piece)) > 0 &&
           text.size() < LARGEST_SECRET_FILE) {
        text.append(piece, static_cast<std::size_t>(length));
    }
    if (length < 0) {
        throw Failure(ExitCode::FAILED, path + " cannot be read: " + std::strerror(errno) + ".");
    }
    return text;
}

std::string firstLine(const std::string& text) {
    std::string line = text.substr(0, text.find('\n'));
    if (!line.empty() && line.back() == '\r') {
        line.pop_back();
    }
    return line;
}

std::optional<Credentials> lookInNetrc(const CredentialOptions& options) {
    const std::string named = readEnvironment("NETRC");
    const std::string home = readEnvironment("HOME");
    if (named.empty() && home.empty()) {
        return std::nullopt;
    }
    const std::optional<std::string> text =
        readSecret(named.empty() ? home + "/.netrc" : named, named.empty());
    return text ? findInNetrc(*text, options.host, options.user) : std::nullopt;
}

// Disables the terminal's echo during its lifetime.
class SilentTerminal {
public:
    explicit SilentTerminal(int descriptor) : descriptor(descriptor) {
        silenced = tcgetattr(descriptor, &former) == 0;
        termios silent = former;
        silent.c_lflag &= ~static_cast<tcflag_t>(ECHO);
        silenced = silenced && tcsetattr(descriptor, TCSAFLUSH, &silent) == 0;
    }
    SilentTerminal(const SilentTerminal&) = delete;
    SilentTerminal& operator=(const SilentTerminal&) = delete;
    ~SilentTerminal() {
        if (silenced) {
            tcsetattr(descriptor, TCSAFLUSH, &former);
        }
    }

    bool isSilent() const { return silenced; }

private:
    const int descriptor;
    termios former = {};
    bool silenced = false;
};

std::optional<std::string> askForPassword(const CredentialOptions& options) {
    if (isatty(STDIN_FILENO) == 0) {
        return std::nullopt;
    }
    const Descriptor terminal(open("/dev/tty", O_RDWR | O_CLOEXEC));
    const SilentTerminal silent(terminal.get());
    if (!terminal.isOpen() || !silent.isSilent()) {
        return std::nullopt;
    }
    const std::string question = "Password of " + options.user + " on " + options.host + ": ";
    std::string password;
    char character = 0;
    const bool asked = write(terminal.get(), question.data(), question.size()) > 0;
    while (asked && read(terminal.get(), &character, 1) == 1 && character != '\n') {
        password += character;
    }
    // The terminal did not echo the line feed after the password.
    const bool ended = write(terminal.get(), "\n", 1) == 1;
    return asked && ended ? std::optional(password) : std::nullopt;
}

}  // namespace

Credentials findCredentials(const CredentialOptions& options) {
    Credentials found;
    found.user = options.user;
    const std::string fromEnvironment = readEnvironment("EFICTL_PASSWORD");
    if (!options.passwordFile.empty()) {
        found.password = firstLine(*readSecret(options.passwordFile, false));
    } else if (!fromEnvironment.empty()) {
        found.password = fromEnvironment;
    } else if (const std::optional<Credentials> entry = lookInNetrc(options)) {
        found = *entry;
    } else if (!found.user.empty()) {
        found.password = askForPassword(options).value_or("");
    }
    if (found.user.empty()) {
        throw Failure(ExitCode::USAGE,
                      "No user is given. Give one with --user, in EFICTL_USER or in netrc.");
    }
    if (found.password.empty()) {
        throw Failure(ExitCode::USAGE, "There is no password for " + found.user +
                                           ". Give it with --password-file, in EFICTL_PASSWORD, in "
                                           "netrc or on a terminal.");
    }
    return found;
}

}  // namespace Efictl
