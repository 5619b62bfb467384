#include <VeskLib/Gui/FormInfo.h>

#include "tests/contract/multipart.h"
#include "tests/support/files.h"

#include <VeskLib/getCGIPath.h>

#include <gtest/gtest.h>

#include <unistd.h>

#include <cstdio>
#include <functional>
#include <iostream>

namespace VeskLib::Test {

using Gui::FormInfo;

namespace {

// The largest file that the program accepts.
const std::size_t LARGEST_UPLOAD = 393216;

std::string printedWith(const ChildSetup& request, const std::function<void(FormInfo&)>& work) {
    const ChildResult result = runInChild(
        [&work] {
            FormInfo formInfo;
            work(formInfo);
            return 0;
        },
        request);
    EXPECT_EQ(result.exitStatus, 0) << result.errors;
    return result.output;
}

ChildSetup upload(const std::string& fileName, const std::string& content) {
    return multipartRequest({{"functionID", "106"}}, fileName, content);
}

std::string everyByte() {
    std::string content;
    for (int byte = 0; byte < 256; ++byte) {
        content += static_cast<char>(byte);
    }
    return content + "\r\n--" + content;
}

// Returns a path that only this test uses, on the file system of the staged files.
std::string stagingPath() {
    return getCGIPath("/var/tmp/contract_upload_") + std::to_string(::getpid());
}

}  // namespace

TEST(FormInfoUploadTest, returnsFileNameAsSent) {
    for (const std::string name :
         {"eficonf.dat", "a b.dat", "C:folder.dat", "\xE8\xA3\xBD.dat", ".dat", "x", "a/b.dat"}) {
        EXPECT_EQ(printedWith(upload(name, "x"),
                              [](FormInfo& form) { std::cout << form.getUploadFileName(); }),
                  name);
    }
}

TEST(FormInfoUploadTest, returnsFileSize) {
    for (const std::size_t size : {std::size_t{0}, std::size_t{1}, std::size_t{65536},
                                   LARGEST_UPLOAD, LARGEST_UPLOAD + 1, 2 * LARGEST_UPLOAD}) {
        EXPECT_EQ(printedWith(upload("a.dat", std::string(size, 'x')),
                              [](FormInfo& form) { std::cout << form.getUploadFileSize(); }),
                  std::to_string(size));
    }
}

TEST(FormInfoUploadTest, storesFileWhereItCanBeRenamedToStaging) {
    for (const std::string& content : {everyByte(), std::string(LARGEST_UPLOAD, 'y')}) {
        const std::string staged = stagingPath();
        EXPECT_EQ(printedWith(upload("a.dat", content),
                              [&staged](FormInfo& form) {
                                  std::cout << std::rename(form.getUploadFilePath().c_str(),
                                                           staged.c_str());
                              }),
                  "0");
        EXPECT_TRUE(readText(staged) == content);
        static_cast<void>(std::remove(staged.c_str()));
    }
}

TEST(FormInfoUploadTest, readsFieldsOfUploadForm) {
    EXPECT_EQ(printedWith(upload("a.dat", "x"),
                          [](FormInfo& form) {
                              std::string value;
                              std::cout << form.getFormData("functionID", value) << value;
                          }),
              "1106");
}

TEST(FormInfoUploadTest, returnsEmptyTextsAndZeroSizeWithoutFile) {
    const auto ask = [](FormInfo& form) {
        std::cout << "[" << form.getUploadFileName() << form.getUploadFilePath() << "]"
                  << form.getUploadFileSize();
    };
    EXPECT_EQ(printedWith(multipartRequest({{"functionID", "106"}}, "", ""), ask), "[]0");
    EXPECT_EQ(printedWith({}, ask), "[]0");
}

TEST(FormInfoUploadTest, terminateRemovesUploadThatWasNotMoved) {
    const std::string path = printedWith(upload("a.dat", "content"), [](FormInfo& form) {
        const std::string stored = form.getUploadFilePath();
        std::cout << (exists(stored) ? stored : "not stored");
        form.terminate();
    });
    EXPECT_NE(path, "not stored");
    EXPECT_FALSE(exists(path)) << path;
}

TEST(FormInfoUploadTest, terminateForgetsFile) {
    EXPECT_EQ(printedWith(upload("a.dat", "content"),
                          [](FormInfo& form) {
                              form.terminate();
                              std::cout << "[" << form.getUploadFileName() << "]"
                                        << form.getUploadFileSize();
                          }),
              "[]0");
}

TEST(FormInfoUploadTest, terminateKeepsMovedFile) {
    const std::string staged = stagingPath();
    printedWith(upload("a.dat", "content"), [&staged](FormInfo& form) {
        static_cast<void>(std::rename(form.getUploadFilePath().c_str(), staged.c_str()));
        form.terminate();
    });
    EXPECT_EQ(readText(staged), "content");
    static_cast<void>(std::remove(staged.c_str()));
}

}  // namespace VeskLib::Test
