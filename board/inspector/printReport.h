#pragma once

#include "board/inspector/FileReport.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace VeskLib::Board {

bool isUsable(const FileReport& report);

nlohmann::ordered_json toJSON(const FileReport& report);

// Prints `json`, with replacement characters for bytes that are not UTF-8.
void printJSON(const nlohmann::ordered_json& json);

// Prints a report for people. Control characters in its texts become "?".
void printText(const FileReport& report);

// Prints the differences between two usable files, one per line.
void printDifferences(const std::vector<Difference>& differences);

}  // namespace VeskLib::Board
