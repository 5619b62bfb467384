#include "board/inspector/FileReport.h"

#include "board/inspector/PayloadSettings.h"
#include "board/inspector/whyNotUsable.h"
#include "platform/host/base/sha256.h"
#include "platform/host/storage/files.h"

#include <algorithm>
#include <cerrno>
#include <cstring>
#include <ctime>
#include <map>

namespace VeskLib::Board {

namespace {

using Bytes = std::vector<unsigned char>;
// By name; of settings with the same name, the first one counts.
using Settings = std::map<std::string, std::string>;

const char* const NOTHING = "(none)";

// Files that are too large to be used are still read up to this size.
const std::size_t LARGEST_LOOK = 64 * 1024 * 1024;

void addIfDifferent(std::vector<Difference>& differences, const char* what,
                    const std::string& first, const std::string& second) {
    if (first != second) {
        differences.push_back({what, first, second});
    }
}

Settings byName(const std::vector<Setting>& settings) {
    Settings sorted;
    for (const Setting& setting : settings) {
        sorted.emplace(setting.name, setting.value);
    }
    return sorted;
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

// Adds the first byte that differs. The difference is named by its offset, between `before` and
// `after`.
void compareBytes(const Bytes& first, const Bytes& second, const std::string& before,
                  const std::string& after, std::vector<Difference>& differences) {
    const auto place =
        std::mismatch(first.begin(), first.end(), second.begin(), second.end()).first;
    const auto offset = static_cast<std::size_t>(place - first.begin());
    differences.push_back(
        {before + std::to_string(offset) + after, byteAt(first, offset), byteAt(second, offset)});
}

void comparePayloads(const Bytes& first, const Bytes& second,
                     std::vector<Difference>& differences) {
    if (first == second) {
        return;
    }
    addIfDifferent(differences, "payload size", std::to_string(first.size()),
                   std::to_string(second.size()));
    const std::size_t before = differences.size();
    const PayloadSettings firstParts = readSettings(first);
    const PayloadSettings secondParts = readSettings(second);
    compareSettings(byName(firstParts.settings), byName(secondParts.settings), differences);
    if (differences.size() == before) {
        // Also reached if only the order of the settings differs.
        compareBytes(first, second, "payload byte ", "", differences);
    } else if (firstParts.others != secondParts.others) {
        compareBytes(firstParts.others, secondParts.others, "byte ", " outside the settings",
                     differences);
    }
}

// Returns the reason for an errno of readFile().
std::string describeReadError(int error) {
    switch (error) {
        case EINVAL:
            return "not a regular file";
        case ELOOP:
            return "a symbolic link: name the file that it points to";
        default:
            return std::strerror(error);
    }
}

std::string describeLimit() {
    return "a configuration file has at most " + std::to_string(Host::LARGEST_CONFIGURATION_FILE) +
           " bytes";
}

std::string format(const char* pattern, const std::tm& time) {
    char text[sizeof "2106-02-07T06:28:15+0000"];
    return std::string(text, std::strftime(text, sizeof text, pattern, &time));
}

}  // namespace

FileReport inspect(const std::string& path) {
    FileReport report;
    report.path = path;
    Bytes bytes;
    if (!Host::readFile(path, LARGEST_LOOK, bytes)) {
        const bool isTooLarge = errno == EFBIG;
        report.reason = isTooLarge ? describeLimit() : describeReadError(errno);
        report.verdict =
            isTooLarge ? FileReport::Verdict::TOO_LARGE : FileReport::Verdict::NOT_READABLE;
        return report;
    }
    report.size = bytes.size();
    report.sha256 = Host::sha256Hex(bytes);
    if (bytes.size() > Host::LARGEST_CONFIGURATION_FILE) {
        report.verdict = FileReport::Verdict::TOO_LARGE;
        report.reason = describeLimit();
    } else if (!decode(bytes, report.file)) {
        report.verdict = FileReport::Verdict::NOT_A_CONFIGURATION_FILE;
        report.reason = whyNotUsable(bytes);
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
                                const Host::ConfigurationFile& second, SaveTime saveTime) {
    std::vector<Difference> differences;
    if (saveTime == SaveTime::COMPARED) {
        addIfDifferent(differences, "saved on", formatTime(first.saveTime),
                       formatTime(second.saveTime));
    }
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
    return format("%Y-%m-%dT%H:%M:%SZ", utc);
}

std::string formatLocalTime(std::uint32_t time) {
    const std::time_t seconds = time;
    std::tm local = {};
    localtime_r(&seconds, &local);
    std::string text = format("%Y-%m-%dT%H:%M:%S%z", local);
    // ISO 8601 requires a colon in the offset if the time has colons.
    const std::size_t minutesOfOffset = 2;
    return text.insert(text.size() - minutesOfOffset, ":");
}

}  // namespace VeskLib::Board
