#include <VeskLib/LockedFile.h>

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

using namespace VeskLib::Scripted;

namespace VeskLib {

LockedFile::LockedFile(const std::string& path) : descriptor(-1) {
    if (script().lockError) {
        record("LockedFile cannot be locked: " + path);
        throw makeScriptedException(*script().lockError);
    }
    objectMade(this, describe("LockedFile", path));
}

LockedFile::~LockedFile() {
    objectDeleted(this);
}

}  // namespace VeskLib
