#pragma once

#include "board/inspector/FileReport.h"

#include <nlohmann/json.hpp>

#include <string>
#include <vector>

namespace VeskLib::Board {

bool isUsable(const FileReport& report);

nlohmann::ordered_json toJSON(const FileReport& report);

// Prints texts that are not UTF-8 with replacement characters.
void printJSON(const nlohmann::ordered_json& json);

// Prints a report for a person. Control characters of its texts become "?".
void printText(const FileReport& report);

// Prints the differences of two usable files, a line each.
void printDifferences(const std::vector<Difference>& differences);

}  // namespace VeskLib::Board
