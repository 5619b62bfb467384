#pragma once

#include "tests/support/ScopedEnvironment.h"
#include "tests/unit/support/PageTest.h"

#include <string>

namespace VeskLib::Test {

// Fixture for tests of a page that accepts uploads. The script provides a valid upload and a
// back-end that restores; the test posts the step.
class UploadPageTest : public PageTest {
protected:
    UploadPageTest() {
        script.uploadName = "x.dat";
        script.uploadPath = "/uploaded";
        script.uploadSize = 1;
        script.fileHeader.saveTime = 1236384000;  // 7 March 2009
        script.fileVersion = "1.23 B";
        script.filePartition = 4;
        script.filePartitionName = "the file's";
        script.replies[0x020100A4].errorCode = 0;
    }

    void post(const std::string& status) {
        script.posted = true;
        script.formFields["hidden_status"] = status;
    }

    std::string print(const Gui::CommonDefaultPage& page) {
        const std::size_t before = output().size();
        page.printHTML();
        return output().substr(before);
    }

    ScopedEnvironment timeZone{"TZ", "UTC0"};
};

}  // namespace VeskLib::Test
