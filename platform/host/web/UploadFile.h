#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace VeskLib::Host {

// An uploaded file that is being written to the board's /var/tmp. It has no name until it is
// complete, so that an interrupted upload leaves nothing behind, however the process ends.
class UploadFile {
public:
    UploadFile() = default;
    UploadFile(const UploadFile&) = delete;
    UploadFile& operator=(const UploadFile&) = delete;

    // Removes the file unless it was moved away.
    ~UploadFile();

    // Makes write() only count the bytes.
    void keepNothing() { kept = false; }

    // Appends bytes; those beyond FormLimits::FILE_LENGTH are counted but not stored. path()
    // reports a failure to store them.
    void write(std::string_view bytes);

    // Returns the number of bytes passed to write(), at most 4294967295.
    std::uint32_t size() const;

    // Names the file, unless it has a name, and returns its path. Returns "" if there is no file or
    // it exceeds the limit. Throws PException (UPLOAD_NOT_STORED) if it could not be stored
    // completely.
    std::string path();

    // Returns how many files this process has named, including those that are gone.
    static unsigned int namedFiles();

    // Removes the file unless it was moved away. The object is then as new.
    void remove();

private:
    bool open();

    int descriptor = -1;
    bool kept = true;
    bool failed = false;
    std::uint64_t received = 0;
    std::string name;
};

}  // namespace VeskLib::Host
