#pragma once

#include "platform/host/storage/ConfigurationFile.h"
#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Test {

// Exit statuses of eficonf.
enum InspectorStatus { SAME = 0, DIFFERENT = 1, NOT_USABLE = 2, USAGE = 3, NOT_PRINTED = 4 };

// Runs eficonf in the time zone of Japan, UTC+9. Fails the test if it writes to both standard
// output and standard error.
ChildResult runInspector(std::vector<std::string> words);

// Runs eficonf with "--json" and parses its output. Expects the exit status `expectedStatus`.
nlohmann::json runForJSON(std::vector<std::string> words, int expectedStatus);

// A fixture with a temporary folder, which the destructor removes.
class InspectorTest : public testing::Test {
protected:
    InspectorTest();
    ~InspectorTest() override;

    // Returns the path of `name` in the folder.
    std::string at(const std::string& name) const { return folder + "/" + name; }

    // Writes a file into the folder and returns its path.
    std::string write(const std::string& name, std::string_view bytes) const;
    std::string write(const std::string& name, const Host::ConfigurationFile& file) const;

private:
    std::string folder;
};

// Returns a configuration of partition 3 with BIOS version "1.23 B", saved on 2026-03-07T12:00:00Z.
Host::ConfigurationFile makeSample(std::string_view payload);

}  // namespace VeskLib::Test
