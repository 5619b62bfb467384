#pragma once

#include <VeskLib/VeskUi/SerializablePacket.h>

#include <string>
#include <vector>

namespace VeskLib::VeskUi {

// The firmware versions of the server's boards; all unknown until the packet is filled.
class VersionInfoPacket : public SerializablePacket {
public:
    VersionInfoPacket();
    ~VersionInfoPacket() override;

    // Returns the BIOS version text of system board `systemBoard`, or "-" if it is not known.
    // `bank` 0 is the running version.
    std::string getBIOSVersion(int systemBoard, int bank) const;

    // Appends the version of the next system board number.
    void addBIOSVersion(const std::string& version);

    unsigned int getSerialized(unsigned char* buffer, unsigned int size) const override;
    unsigned int getSerializedSize() const override;
    bool setSerialized(const unsigned char* buffer, unsigned int size) override;

private:
    std::vector<std::string> biosVersions;
};

}  // namespace VeskLib::VeskUi
