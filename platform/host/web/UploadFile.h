#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace VeskLib::Host {

// An uploaded file on its way to the board's /var/tmp. It has no name until it is whole, so that an
// upload that breaks off leaves nothing behind, however the process ends.
class UploadFile {
public:
    UploadFile() = default;
    UploadFile(const UploadFile&) = delete;
    UploadFile& operator=(const UploadFile&) = delete;

    // Removes the file unless somebody moved it.
    ~UploadFile();

    // From now on, bytes are only counted.
    void keepNothing() { kept = false; }

    // Appends bytes; those beyond FormLimits::FILE_LENGTH are counted and not stored. What cannot
    // be stored is known to path().
    void write(std::string_view bytes);

    // How many bytes were given to write(), at most 4294967295.
    std::uint32_t size() const;

    // Gives the file a name, if it has none yet, and returns its path. Empty when there is no file,
    // or it is longer than what is stored. Throws PException (UPLOAD_NOT_STORED) when the disk did
    // not take it all.
    std::string path();

    // How many files of this process got a name, whatever became of them.
    static unsigned int namedFiles();

    // Removes the file unless somebody moved it; it is empty again.
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
