// The body of a form with a file, in one piece and in many. The first line of an input is the
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

// The parts of a body as they come.
class Recorder : public Host::MultipartHandler {
public:
    void beginPart(const std::string& name, const std::string* fileName) override {
        Fuzz::require(!inPart, "a part begins where none is open");
        inPart = true;
        parts.push_back({name, fileName != nullptr, fileName == nullptr ? "" : *fileName, ""});
    }

    void takeBytes(std::string_view bytes) override {
        Fuzz::require(inPart && !bytes.empty(), "bytes belong to a part");
        parts.back().content += bytes;
    }

    void endPart() override {
        Fuzz::require(inPart, "a part ends that has begun");
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
        Fuzz::require(!recorder.inPart, "a body that was taken has no open part");
    } catch (const PException& exception) {
        refusal = exception.getExceptionDetail();
    }
    return {recorder.parts, refusal};
}

void requireLimits(const std::vector<Fuzz::FormPart>& parts) {
    Fuzz::require(parts.size() <= FormLimits::FIELDS, "no more parts than the limit");
    for (const Fuzz::FormPart& part : parts) {
        Fuzz::require(!part.name.empty() && part.name.size() <= FormLimits::NAME_LENGTH,
                      "a part has a name within its limit");
        Fuzz::require(part.fileName.size() <= FormLimits::FILE_NAME_LENGTH,
                      "no longer file name than the limit");
    }
}

// `parts` as a body, between boundaries that none of them holds.
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
    Fuzz::require(read(contentType, body, 9) == whole, "pieces decide nothing");
    Fuzz::require(read(contentType, body, 1) == whole, "single bytes decide nothing");
    requireLimits(whole.parts);
    if (whole.refusal == 0) {
        Fuzz::require(sendAgain(whole.parts) == whole,
                      "parts that are sent again come back as the same");
    }
    return 0;
}
