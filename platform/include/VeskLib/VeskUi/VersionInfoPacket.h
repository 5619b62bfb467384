#pragma once

#include <VeskLib/VeskUi/SerializablePacket.h>

#include <string>
#include <vector>

namespace VeskLib::VeskUi {

// The firmware versions of the server's boards. A packet that was never filled knows none.
class VersionInfoPacket : public SerializablePacket {
public:
    VersionInfoPacket();
    ~VersionInfoPacket() override;

    // The BIOS version text of system board `systemBoard`; "-" when it is not known. `bank` is 0
    // for the version that runs now.
    std::string getBIOSVersion(int systemBoard, int bank) const;

    // Gives the packet the version of the next system board number.
    void addBIOSVersion(const std::string& version);

    unsigned int getSerialized(unsigned char* buffer, unsigned int size) const override;
    unsigned int getSerializedSize() const override;
    bool setSerialized(const unsigned char* buffer, unsigned int size) override;

private:
    std::vector<std::string> biosVersions;
};

}  // namespace VeskLib::VeskUi
