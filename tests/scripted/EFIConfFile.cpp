#include <VeskLib/VeskUi/EFIConfFile.h>

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

using namespace VeskLib::Scripted;

namespace VeskLib::VeskUi {

namespace {

void checkHeader() {
    record("getFileHeader");
    if (script().headerError) {
        throw makeScriptedException(*script().headerError);
    }
}

}  // namespace

EFIConfFile::EFIConfFile(const char* path) : descriptor(-1) {
    if (script().openError) {
        record(std::string("EFIConfFile cannot be opened: ") + path);
        throw makeScriptedException(*script().openError);
    }
    objectMade(this, describe("EFIConfFile", path));
}

EFIConfFile::~EFIConfFile() {
    objectDeleted(this);
}

void EFIConfFile::getFileHeader(EFIConfFileHeader& header, std::string& version) {
    checkHeader();
    header = script().fileHeader;
    version = script().fileVersion;
}

void EFIConfFile::getFileHeader(EFIConfFileHeader& header, std::string& version,
                                unsigned int& partition, std::string& partitionName) {
    getFileHeader(header, version);
    partition = script().filePartition;
    partitionName = script().filePartitionName;
}

}  // namespace VeskLib::VeskUi
