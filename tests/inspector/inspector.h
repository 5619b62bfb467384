#pragma once

#include "platform/host/storage/ConfigurationFile.h"
#include "tests/support/ChildProcess.h"

#include <gtest/gtest.h>
#include <nlohmann/json.hpp>

#include <string>
#include <string_view>
#include <vector>

namespace VeskLib::Test {

// The exit statuses of eficonf.
enum InspectorStatus { SAME = 0, DIFFERENT = 1, NOT_USABLE = 2, USAGE = 3, NOT_PRINTED = 4 };

// Runs eficonf in the time zone of Japan, 9 hours before UTC. It must have written to one of its
// outputs only.
ChildResult runInspector(std::vector<std::string> words);

// Runs it with "--json" and reads what it prints.
nlohmann::json runForJSON(std::vector<std::string> words, int expectedStatus);

// A test with a folder of its own.
class InspectorTest : public testing::Test {
protected:
    InspectorTest();
    ~InspectorTest() override;

    // The path of `name` in the folder.
    std::string at(const std::string& name) const { return folder + "/" + name; }

    // Writes a file into the folder and gives its path.
    std::string write(const std::string& name, std::string_view bytes) const;
    std::string write(const std::string& name, const Host::ConfigurationFile& file) const;

private:
    std::string folder;
};

// Partition 3, saved on 2026-03-07T12:00:00Z, of BIOS version "1.23 B", with the payload.
Host::ConfigurationFile makeSample(std::string_view payload);

}  // namespace VeskLib::Test
