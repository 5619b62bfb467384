#include "tests/inspector/inspector.h"

#include "tests/support/files.h"

#include <stdlib.h>

#include <filesystem>
#include <stdexcept>

namespace VeskLib::Test {

ChildResult runInspector(std::vector<std::string> words) {
    words.insert(words.begin(), EFICONF);
    ChildResult result = runProgram(words, {.environment = {{"TZ", "JST-9"}}, .input = {}});
    EXPECT_TRUE(result.output.empty() || result.errors.empty()) << result.errors;
    return result;
}

nlohmann::json runForJSON(std::vector<std::string> words, int expectedStatus) {
    words.emplace_back("--json");
    const ChildResult result = runInspector(words);
    EXPECT_EQ(result.exitStatus, expectedStatus) << result.errors;
    const nlohmann::json json = nlohmann::json::parse(result.output, nullptr, false);
    EXPECT_FALSE(json.is_discarded()) << result.output;
    return json;
}

InspectorTest::InspectorTest()
    : folder((std::filesystem::temp_directory_path() / "inspector-XXXXXX").string()) {
    if (::mkdtemp(folder.data()) == nullptr) {
        throw std::runtime_error("cannot create a folder for the inspector's files");
    }
}

InspectorTest::~InspectorTest() {
    std::error_code ignored;
    std::filesystem::remove_all(folder, ignored);
}

std::string InspectorTest::write(const std::string& name, std::string_view bytes) const {
    writeText(at(name), bytes);
    return at(name);
}

std::string InspectorTest::write(const std::string& name,
                                 const Host::ConfigurationFile& file) const {
    const std::vector<unsigned char> bytes = encode(file);
    EXPECT_FALSE(bytes.empty());
    return write(name, std::string_view(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
}

Host::ConfigurationFile makeSample(std::string_view payload) {
    Host::ConfigurationFile file;
    file.saveTime = 1772884800;
    file.partition = 3;
    file.version = "1.23 B";
    file.partitionName = "Alpha";
    file.payload.assign(payload.begin(), payload.end());
    return file;
}

}  // namespace VeskLib::Test
