// The body of a multipart form, in one piece and in many. The first line of an input is the
// request's content type, the rest is the body.

#include "platform/host/web/MultipartReader.h"

#include "platform/host/web/FormLimits.h"
#include "tests/fuzz/support/formParts.h"
#include "tests/fuzz/support/input.h"
#include "tests/fuzz/support/require.h"

#include <VeskLib/PException.h>

using namespace VeskLib;
namespace FormLimits = Host::FormLimits;

namespace {

// Records the parts of a body.
class Recorder : public Host::MultipartHandler {
public:
    void beginPart(const std::string& name, const std::string* fileName) override {
        Fuzz::require(!inPart, "a part begins only when none is open");
        inPart = true;
        parts.push_back({name, fileName != nullptr, fileName == nullptr ? "" : *fileName, ""});
    }

    void takeBytes(std::string_view bytes) override {
        Fuzz::require(inPart && !bytes.empty(), "bytes are reported only within a part");
        parts.back().content += bytes;
    }

    void endPart() override {
        Fuzz::require(inPart, "only an open part ends");
        inPart = false;
    }

    std::vector<Fuzz::FormPart> parts;
    bool inPart = false;
};

struct Outcome {
    std::vector<Fuzz::FormPart> parts;
    int refusal = 0;

    bool operator==(const Outcome&) const = default;
};

Outcome read(const std::string& contentType, std::string_view body, std::size_t largestPiece) {
    Recorder recorder;
    int refusal = 0;
    try {
        Host::MultipartReader reader(contentType, recorder);
        Fuzz::inPieces(body, largestPiece,
                       [&reader](std::string_view piece) { reader.feed(piece); });
        reader.finish();
        Fuzz::require(!recorder.inPart, "an accepted body has no open part");
    } catch (const PException& exception) {
        refusal = exception.getExceptionDetail();
    }
    return {recorder.parts, refusal};
}

void requireLimits(const std::vector<Fuzz::FormPart>& parts) {
    Fuzz::require(parts.size() <= FormLimits::FIELDS, "the number of parts is within the limit");
    for (const Fuzz::FormPart& part : parts) {
        Fuzz::require(!part.name.empty() && part.name.size() <= FormLimits::NAME_LENGTH,
                      "a part has a name that is within its limit");
        Fuzz::require(part.fileName.size() <= FormLimits::FILE_NAME_LENGTH,
                      "a file name is within its limit");
    }
}

// Reads a new body that contains `parts`.
Outcome sendAgain(const std::vector<Fuzz::FormPart>& parts) {
    const std::string boundary = Fuzz::makeBoundary(parts);
    return read("multipart/form-data; boundary=" + boundary, Fuzz::makeBody(parts, boundary), 4096);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string input = Fuzz::textOf(data, size);
    std::string_view body = input;
    const std::string contentType = Fuzz::takeLine(body);
    const Outcome whole = read(contentType, body, size + 1);
    Fuzz::require(read(contentType, body, 9) == whole, "the result does not depend on the pieces");
    Fuzz::require(read(contentType, body, 1) == whole, "single bytes give the same result");
    requireLimits(whole.parts);
    if (whole.refusal == 0) {
        Fuzz::require(sendAgain(whole.parts) == whole,
                      "parts that are sent again are read unchanged");
    }
    return 0;
}
