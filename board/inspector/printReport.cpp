#include "board/inspector/printReport.h"

#include "board/inspector/PayloadSettings.h"

#include <iostream>

namespace VeskLib::Board {

using nlohmann::ordered_json;

namespace {

// Replaces control characters, which would control the terminal, by "?". These include U+0080 to
// U+009F, which are C2 80 to C2 9F in UTF-8 and which some terminals obey.
std::string forTerminal(const std::string& text) {
    std::string shown;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const auto byte = static_cast<unsigned char>(text[i]);
        const unsigned char next =
            i + 1 < text.size() ? static_cast<unsigned char>(text[i + 1]) : '\0';
        if (byte == 0xC2 && next >= 0x80 && next <= 0x9F) {
            shown += '?';
            ++i;
        } else {
            shown += byte < 0x20 || byte == 0x7F ? '?' : text[i];
        }
    }
    return shown;
}

void printLine(const char* name, const std::string& value) {
    std::cout << name << ": " << forTerminal(value) << '\n';
}

void printSettings(const std::vector<unsigned char>& payload) {
    const PayloadSettings parts = readSettings(payload);
    if (parts.settings.empty()) {
        std::cout << "Settings: none"
                  << (parts.others.empty() ? "" : "; the payload is opaque, not name=value lines")
                  << '\n';
        return;
    }
    std::cout << "Settings: " << parts.settings.size() << '\n';
    for (const Setting& setting : parts.settings) {
        std::cout << "  " << forTerminal(setting.name) << "=" << forTerminal(setting.value) << '\n';
    }
    if (!parts.others.empty()) {
        std::cout << "Outside the settings: " << parts.others.size() << " bytes\n";
    }
}

ordered_json settingsToJSON(const std::vector<Setting>& settings) {
    ordered_json list = ordered_json::array();
    for (const Setting& setting : settings) {
        list.push_back({{"name", setting.name}, {"value", setting.value}});
    }
    return list;
}

}  // namespace

bool isUsable(const FileReport& report) {
    return report.verdict == FileReport::Verdict::USABLE;
}

ordered_json toJSON(const FileReport& report) {
    ordered_json json = {{"file", report.path}, {"verdict", nameOf(report.verdict)}};
    if (!report.reason.empty()) {
        json["reason"] = report.reason;
    }
    if (!report.sha256.empty()) {
        json["size"] = report.size;
        json["sha256"] = report.sha256;
    }
    if (isUsable(report)) {
        const PayloadSettings parts = readSettings(report.file.payload);
        json["revision"] = report.file.revision;
        json["savedOn"] = formatTime(report.file.saveTime);
        json["savedOnLocal"] = formatLocalTime(report.file.saveTime);
        json["partition"] = report.file.partition;
        json["partitionName"] = report.file.partitionName;
        json["biosVersion"] = report.file.version;
        json["payloadSize"] = report.file.payload.size();
        json["payloadSha256"] = report.payloadSha256;
        json["settings"] = settingsToJSON(parts.settings);
        json["bytesOutsideSettings"] = parts.others.size();
    }
    return json;
}

void printJSON(const ordered_json& json) {
    std::cout << json.dump(4, ' ', false, ordered_json::error_handler_t::replace) << '\n';
}

void printText(const FileReport& report) {
    printLine("File", report.path);
    printLine("Verdict", report.reason.empty()
                             ? nameOf(report.verdict)
                             : std::string(nameOf(report.verdict)) + " (" + report.reason + ")");
    if (!report.sha256.empty()) {
        printLine("Size", std::to_string(report.size) + " bytes");
        printLine("SHA-256", report.sha256);
    }
    if (isUsable(report)) {
        printLine("Revision", std::to_string(report.file.revision));
        printLine("Saved on", formatTime(report.file.saveTime) + ", local time " +
                                  formatLocalTime(report.file.saveTime));
        printLine("Partition", std::to_string(report.file.partition));
        printLine("Partition name", report.file.partitionName);
        printLine("BIOS version", report.file.version);
        printLine("Payload", std::to_string(report.file.payload.size()) + " bytes");
        printLine("Payload SHA-256", report.payloadSha256);
        printSettings(report.file.payload);
    }
}

void printDifferences(const std::vector<Difference>& differences) {
    for (const Difference& difference : differences) {
        std::cout << forTerminal(difference.what) << ": " << forTerminal(difference.first) << " -> "
                  << forTerminal(difference.second) << '\n';
    }
}

}  // namespace VeskLib::Board
