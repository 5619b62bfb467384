#pragma once

#include <string>

namespace VeskLib::VeskUi {

// An EFI configuration file (".dat"), opened for reading.
class EFIConfFile {
public:
    struct EFIConfFileHeader {
        unsigned int revision = 0;  // of the file's layout
        unsigned int saveTime = 0;  // seconds since 1970-01-01 UTC
    };

    // Opens the file. Throws PException if that fails.
    explicit EFIConfFile(const char* path);
    EFIConfFile(const EFIConfFile&) = delete;
    EFIConfFile& operator=(const EFIConfFile&) = delete;
    ~EFIConfFile();

    // Read the header and the BIOS version text; the second form also reads the number and the name
    // of the partition that the file was saved from. A version that begins with "-" is unknown.
    // Both throw PException, and leave the outputs unchanged, if the file cannot be read or is not
    // a complete and undamaged configuration file.
    void getFileHeader(EFIConfFileHeader& header, std::string& version);
    void getFileHeader(EFIConfFileHeader& header, std::string& version, unsigned int& partition,
                       std::string& partitionName);

private:
    int descriptor;
};

}  // namespace VeskLib::VeskUi
