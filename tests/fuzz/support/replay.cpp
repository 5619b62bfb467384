// Runs a fuzz target on given inputs, in builds without the fuzzer.
//
// Usage: fuzz_TARGET FILE|FOLDER...

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iostream>
#include <iterator>
#include <string>
#include <vector>

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size);

namespace {

namespace fs = std::filesystem;

std::vector<fs::path> listFiles(const fs::path& path) {
    if (!fs::is_directory(path)) {
        return {path};
    }
    std::vector<fs::path> files;
    for (const fs::directory_entry& entry : fs::directory_iterator(path)) {
        files.push_back(entry.path());
    }
    return files;
}

bool replay(const fs::path& path) {
    std::ifstream file(path, std::ios::binary);
    const std::string input{std::istreambuf_iterator<char>(file), {}};
    if (!file) {
        std::cerr << path.string() << " cannot be read\n";
        return false;
    }
    // A copy of exactly the input's size, so that a read past its end is detected.
    const std::vector<std::uint8_t> bytes(input.begin(), input.end());
    LLVMFuzzerTestOneInput(bytes.data(), bytes.size());
    return true;
}

}  // namespace

int main(int argumentCount, char** arguments) {
    std::size_t count = 0;
    for (int i = 1; i < argumentCount; ++i) {
        if (!fs::exists(arguments[i])) {
            continue;  // a target without regressions
        }
        for (const fs::path& file : listFiles(arguments[i])) {
            if (!replay(file)) {
                return 1;
            }
            ++count;
        }
    }
    std::cout << count << " inputs\n";
    return count == 0 ? 1 : 0;
}
