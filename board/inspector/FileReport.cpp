#include "board/inspector/FileReport.h"

#include "platform/host/base/sha256.h"
#include "platform/host/storage/files.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <map>
#include <optional>
#include <string_view>

namespace VeskLib::Board {

namespace {

using Bytes = std::vector<unsigned char>;
using Settings = std::map<std::string, std::string>;

const char* const NOTHING = "(none)";

// Some files are looked at that are far too large to be used; this much is still read.
const std::size_t LARGEST_LOOK = 64 * 1024 * 1024;

bool isText(std::string_view text) {
    return std::none_of(text.begin(), text.end(), [](char character) {
        const auto byte = static_cast<unsigned char>(character);
        return byte < 0x20 || byte == 0x7F;
    });
}

// The payload's settings; none when it holds anything but "name=value" lines.
std::optional<Settings> parseSettings(const Bytes& payload) {
    Settings settings;
    std::string_view rest(reinterpret_cast<const char*>(payload.data()), payload.size());
    while (!rest.empty()) {
        const std::size_t end = rest.find('\n');
        const std::string_view line = rest.substr(0, end);
        const std::size_t equals = line.find('=');
        if (end == std::string_view::npos || equals == std::string_view::npos || !isText(line)) {
            return std::nullopt;
        }
        settings.emplace(line.substr(0, equals), line.substr(equals + 1));
        rest.remove_prefix(end + 1);
    }
    return settings;
}

void addIfDifferent(std::vector<Difference>& differences, const char* what,
                    const std::string& first, const std::string& second) {
    if (first != second) {
        differences.push_back({what, first, second});
    }
}

std::string valueOf(const Settings& settings, const std::string& name) {
    const auto setting = settings.find(name);
    return setting == settings.end() ? NOTHING : setting->second;
}

void compareSettings(const Settings& first, const Settings& second,
                     std::vector<Difference>& differences) {
    Settings all = first;
    all.insert(second.begin(), second.end());
    for (const auto& setting : all) {
        const std::string& name = setting.first;
        addIfDifferent(differences, ("setting " + name).c_str(), valueOf(first, name),
                       valueOf(second, name));
    }
}

std::string byteAt(const Bytes& bytes, std::size_t offset) {
    return offset < bytes.size() ? std::to_string(bytes[offset]) : NOTHING;
}

void compareBytes(const Bytes& first, const Bytes& second, std::vector<Difference>& differences) {
    const auto place =
        std::mismatch(first.begin(), first.end(), second.begin(), second.end()).first;
    const auto offset = static_cast<std::size_t>(place - first.begin());
    differences.push_back(
        {"payload byte " + std::to_string(offset), byteAt(first, offset), byteAt(second, offset)});
}

void comparePayloads(const Bytes& first, const Bytes& second,
                     std::vector<Difference>& differences) {
    if (first == second) {
        return;
    }
    addIfDifferent(differences, "payload size", std::to_string(first.size()),
                   std::to_string(second.size()));
    const std::size_t before = differences.size();
    const std::optional<Settings> firstSettings = parseSettings(first);
    const std::optional<Settings> secondSettings = parseSettings(second);
    if (firstSettings && secondSettings) {
        compareSettings(*firstSettings, *secondSettings, differences);
    }
    // Also for settings that differ in their order alone.
    if (differences.size() == before) {
        compareBytes(first, second, differences);
    }
}

}  // namespace

FileReport inspect(const std::string& path) {
    FileReport report;
    report.path = path;
    Bytes bytes;
    if (!Host::readFile(path, LARGEST_LOOK, bytes)) {
        report.verdict =
            errno == EFBIG ? FileReport::Verdict::TOO_LARGE : FileReport::Verdict::NOT_READABLE;
        report.reason = std::strerror(errno);
        return report;
    }
    report.size = bytes.size();
    report.sha256 = Host::sha256Hex(bytes);
    if (bytes.size() > Host::LARGEST_CONFIGURATION_FILE) {
        report.verdict = FileReport::Verdict::TOO_LARGE;
    } else if (!decode(bytes, report.file)) {
        report.verdict = FileReport::Verdict::NOT_A_CONFIGURATION_FILE;
    } else {
        report.verdict = FileReport::Verdict::USABLE;
        report.payloadSha256 = Host::sha256Hex(report.file.payload);
    }
    return report;
}

const char* nameOf(FileReport::Verdict verdict) {
    switch (verdict) {
        case FileReport::Verdict::USABLE:
            return "usable";
        case FileReport::Verdict::NOT_READABLE:
            return "not readable";
        case FileReport::Verdict::TOO_LARGE:
            return "too large";
        case FileReport::Verdict::NOT_A_CONFIGURATION_FILE:
            return "not a configuration file, or damaged";
    }
    return "";
}

std::vector<Difference> compare(const Host::ConfigurationFile& first,
                                const Host::ConfigurationFile& second) {
    std::vector<Difference> differences;
    addIfDifferent(differences, "saved on", formatTime(first.saveTime),
                   formatTime(second.saveTime));
    addIfDifferent(differences, "partition", std::to_string(first.partition),
                   std::to_string(second.partition));
    addIfDifferent(differences, "partition name", first.partitionName, second.partitionName);
    addIfDifferent(differences, "BIOS version", first.version, second.version);
    comparePayloads(first.payload, second.payload, differences);
    return differences;
}

std::string formatTime(std::uint32_t time) {
    const std::time_t seconds = time;
    std::tm utc = {};
    gmtime_r(&seconds, &utc);
    char text[sizeof "2106-02-07T06:28:15Z"];
    return std::string(text, std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &utc));
}

}  // namespace VeskLib::Board
