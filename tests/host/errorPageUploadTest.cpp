#include "platform/host/base/platformException.h"
#include "platform/host/text/Catalogue.h"
#include "platform/host/web/formPolicy.h"
#include "tests/host/TestMain.h"
#include "tests/host/multipartBody.h"
#include "tests/support/BoardTest.h"
#include "tests/support/files.h"
#include "tests/support/markup.h"

#include <VeskLib/Gui/FormInfo.h>

#include <gmock/gmock.h>

#include <iostream>

namespace VeskLib::Test {

using testing::HasSubstr;
using testing::IsEmpty;
using testing::Not;

namespace {

const std::string URLENCODED = "application/x-www-form-urlencoded";

// Reads a posted form while a page is being printed.
int readForm(TestMain& /*main*/) {
    std::cout << "half a page";
    std::string value;
    const Gui::FormInfo form;
    Host::formPolicy().file = Host::FormPolicy::File::STORED;
    form.getFormData("a", value);
    std::cout << value << form.getUploadFilePath();
    return 0;
}

CGIResponse respond(ChildSetup request, const std::string& language = "en") {
    request.environment["HTTP_ACCEPT_LANGUAGE"] = language;
    const ChildResult result = runInChild([] { return TestMain(readForm).exec(); }, request);
    CGIResponse response = parseResponse(result.output);
    EXPECT_EQ(result.exitStatus == 0, response.status.starts_with("200")) << result.errors;
    return response;
}

std::string uploadFailed(int language) {
    return Gui::MessageMgr(language).getMessage(30, Host::REQUEST_MALFORMED);
}

std::string caption(int number, Host::PlatformError code) {
    return Gui::MessageMgr(Host::ENGLISH).getString(number) + " [" + std::to_string(number) + "-" +
           std::to_string(code) + "]";
}

class ErrorPageUploadTest : public BoardTest {};

}  // namespace

TEST_F(ErrorPageUploadTest, acceptsValidUpload) {
    const CGIResponse response = respond(postParts(fieldPart("a", "1")));
    EXPECT_EQ(response.body, "half a page1");
}

TEST_F(ErrorPageUploadTest, reportsBrokenUploadInEveryLanguage) {
    const std::string parts = fieldPart("a", "1") + filePart("f", "n", "content");
    for (const ChildSetup& request : {postBody(parts), postParts(parts + parts)}) {
        const CGIResponse english = respond(request);
        EXPECT_EQ(english.status, "400 Bad Request");
        EXPECT_THAT(textOf(english.body), HasSubstr(uploadFailed(Host::ENGLISH)));
        EXPECT_THAT(uploadFailed(Host::ENGLISH), HasSubstr("[30-1107]"));
        EXPECT_THAT(english.body, Not(HasSubstr("half a page")));
        for (int language = 1; language < std::ssize(Host::languages()); ++language) {
            ASSERT_NE(uploadFailed(language), uploadFailed(Host::ENGLISH));
            EXPECT_THAT(textOf(respond(request, Host::languageTag(language)).body),
                        HasSubstr(uploadFailed(language)));
        }
        EXPECT_THAT(namesIn(boardFile("/var/tmp")), IsEmpty());
    }
}

TEST_F(ErrorPageUploadTest, reportsMissingBoundaryAsBrokenUpload) {
    ChildSetup request = postParts(fieldPart("a", "1"));
    request.environment["CONTENT_TYPE"] = "Multipart/Form-Data ; x=y";
    const CGIResponse response = respond(request);
    EXPECT_EQ(response.status, "400 Bad Request");
    EXPECT_THAT(textOf(response.body), HasSubstr(uploadFailed(Host::ENGLISH)));
}

TEST_F(ErrorPageUploadTest, reportsBrokenQuotesAsBrokenUpload) {
    for (const char* name : {"\"a", "\"a\"b", "\"a\"; filename=\"f.dat"}) {
        const std::string header = std::string("Content-Disposition: form-data; name=") + name;
        const CGIResponse response = respond(postParts(partOf(header + "\r\n", "1")));
        EXPECT_EQ(response.status, "400 Bad Request") << name;
        EXPECT_THAT(textOf(response.body), HasSubstr(uploadFailed(Host::ENGLISH)));
    }
}

TEST_F(ErrorPageUploadTest, reportsOtherBrokenFormAsMalformedRequest) {
    ChildSetup request = postBody("a=1");
    request.environment["CONTENT_LENGTH"] = "4";
    for (const std::string& type : {URLENCODED, std::string(), URLENCODED + "; x=multipart/"}) {
        request.environment["CONTENT_TYPE"] = type;
        const CGIResponse response = respond(request);
        EXPECT_EQ(response.status, "400 Bad Request");
        EXPECT_THAT(textOf(response.body), HasSubstr(caption(9023, Host::REQUEST_MALFORMED)));
        EXPECT_THAT(textOf(response.body), Not(HasSubstr("[30-")));
    }
}

TEST_F(ErrorPageUploadTest, reportsOversizedFieldAsTooLarge) {
    const CGIResponse response = respond(postParts(fieldPart("a", std::string(100000, 'v'))));
    EXPECT_EQ(response.status, "413 Content Too Large");
    EXPECT_THAT(textOf(response.body), HasSubstr(caption(9022, Host::REQUEST_TOO_LARGE)));
}

TEST_F(ErrorPageUploadTest, reportsServerErrorIfUploadCannotBeStored) {
    ChildSetup request = postParts(filePart("f", "n", "content"));
    request.environment["BOARD_ROOT"] = boardFile("/var/run/none");
    const CGIResponse response = respond(request);
    EXPECT_EQ(response.status, "500 Internal Server Error");
    EXPECT_THAT(response.body, HasSubstr("-" + std::to_string(Host::UPLOAD_NOT_STORED) + "]"));
}

}  // namespace VeskLib::Test
