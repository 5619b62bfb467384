#include <VeskLib/Gui/FormInfo.h>

#include "platform/host/base/Environment.h"
#include "platform/host/base/platformException.h"
#include "platform/host/base/stagedFile.h"
#include "platform/host/web/FormLimits.h"
#include "platform/host/web/MultipartReader.h"
#include "platform/host/web/RequestBody.h"
#include "platform/host/web/UploadFile.h"
#include "platform/host/web/UrlencodedReader.h"
#include "platform/host/web/formPolicy.h"
#include "platform/host/web/headerValue.h"
#include "platform/host/web/requestChecks.h"
#include "platform/host/web/requestSession.h"

#include <map>
#include <string_view>

namespace VeskLib::Gui {

using Host::FormPolicy;
using Host::formPolicy;
using Host::makePlatformException;
using Host::readEnvironment;
using Host::UrlencodedReader;
using Host::FormLimits::QUERY_LENGTH;
using Host::FormLimits::VALUE_LENGTH;

namespace {

using Fields = std::map<std::string, std::string>;

[[noreturn]] void refuseSize(const char* problem) {
    throw makePlatformException(Host::REQUEST_TOO_LARGE, problem);
}

void readUrlencodedBody(Fields& fields) {
    Host::RequestBody body;
    if (body.announcedLength().value_or(0) > formPolicy().bodyLength) {
        refuseSize("The form is too large");
    }
    UrlencodedReader reader(fields);
    std::size_t total = 0;
    for (std::string_view piece = body.next(); !piece.empty(); piece = body.next()) {
        total += piece.size();
        if (total > formPolicy().bodyLength) {
            refuseSize("The form is too large");
        }
        reader.feed(piece);
    }
    reader.finish();
}

// Stores the parts of a form as fields and the one file.
class FormParts : public Host::MultipartHandler {
public:
    FormParts(Fields& fields, std::string& fileName, Host::UploadFile& file)
        : fields(fields), fileName(fileName), file(file) {
        if (formPolicy().file != FormPolicy::File::STORED) {
            file.keepNothing();
        }
    }

    void beginPart(const std::string& partName, const std::string* partFileName) override {
        name = partName;
        value.clear();
        inFile = partFileName != nullptr;
        if (inFile && hasFile) {
            throw makePlatformException(Host::REQUEST_MALFORMED, "There is more than one file");
        }
        if (inFile) {
            hasFile = true;
            fileName = *partFileName;
        }
    }

    void takeBytes(std::string_view bytes) override {
        if (inFile && formPolicy().file != FormPolicy::File::REFUSED) {
            file.write(bytes);
            return;
        }
        total += bytes.size();
        if (value.size() + bytes.size() > VALUE_LENGTH || total > formPolicy().bodyLength) {
            refuseSize("A field value is too long");
        }
        value += bytes;
    }

    void endPart() override {
        if (!inFile) {
            fields.emplace(name, value);
        }
    }

private:
    Fields& fields;
    std::string& fileName;
    Host::UploadFile& file;
    std::string name;
    std::string value;
    bool inFile = false;
    bool hasFile = false;
    std::size_t total = 0;
};

void readMultipartBody(const std::string& contentType, FormParts& parts) {
    Host::RequestBody body;
    // Without a file, the limit applies to the whole body, including the part headers.
    if (formPolicy().file == FormPolicy::File::REFUSED &&
        body.announcedLength().value_or(0) > formPolicy().bodyLength) {
        refuseSize("The form is too large");
    }
    Host::MultipartReader reader(contentType, parts);
    for (std::string_view piece = body.next(); !piece.empty(); piece = body.next()) {
        reader.feed(piece);
    }
    reader.finish();
}

void readQuery(Fields& fields) {
    const std::string query = readEnvironment("QUERY_STRING");
    if (query.size() > QUERY_LENGTH) {
        throw makePlatformException(Host::REQUEST_TOO_LARGE, "The query string is too long");
    }
    UrlencodedReader reader(fields);
    reader.feed(query);
    reader.finish();
}

}  // namespace

struct FormInfo::State {
    // Reads the request on the first call. A refused request yields no data at all, because a page
    // must not act on a part of a form.
    void readOnce() {
        if (read) {
            return;
        }
        read = true;
        try {
            // The form first: the first field of a name counts.
            readBody();
            const auto stagedFile = fields.find(Host::STAGED_FILE_FIELD);
            Host::setPostedFile(stagedFile == fields.end() ? "" : stagedFile->second);
            readQuery(fields);
        } catch (...) {
            letGo();
            throw;
        }
    }

    // Discards all data and the uploaded file, and prevents further reading.
    void letGo() {
        read = true;
        fields.clear();
        fileName.clear();
        file.remove();
    }

    Fields fields;
    std::string fileName;
    Host::UploadFile file;

private:
    void readBody() {
        if (!Host::isPost()) {
            return;
        }
        const std::string contentType = readEnvironment("CONTENT_TYPE");
        if (Host::isMediaType(contentType, Host::MULTIPART_FORM)) {
            FormParts parts(fields, fileName, file);
            readMultipartBody(contentType, parts);
        } else if (contentType.empty() || Host::isMediaType(contentType, Host::URLENCODED_FORM)) {
            readUrlencodedBody(fields);
        }
        Host::requireLivingSession();
    }

    bool read = false;
};

FormInfo* FormInfo::myInstance = nullptr;

FormInfo::FormInfo() : state(std::make_unique<State>()) {
}

FormInfo::~FormInfo() = default;

bool FormInfo::getFormData(const std::string& name, std::string& value) const {
    state->readOnce();
    const auto field = state->fields.find(name);
    if (field == state->fields.end()) {
        return false;
    }
    value = field->second;
    return true;
}

std::string FormInfo::getUploadFileName() const {
    state->readOnce();
    return state->fileName;
}

std::string FormInfo::getUploadFilePath() const {
    state->readOnce();
    return state->file.path();
}

unsigned int FormInfo::getUploadFileSize() const {
    state->readOnce();
    return state->file.size();
}

void FormInfo::terminate() {
    state->letGo();
}

}  // namespace VeskLib::Gui
