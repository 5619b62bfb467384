#include "client/report/Result.h"

#include "platform/host/storage/biosVersion.h"

#include <algorithm>

namespace Efictl {

namespace {

// From the least to the most severe.
const ExitCode SEVERITY[] = {ExitCode::DONE,    ExitCode::DIFFERENT, ExitCode::USAGE,
                             ExitCode::REFUSED, ExitCode::FAILED,    ExitCode::UNREACHABLE,
                             ExitCode::UNKNOWN};

std::ptrdiff_t severityOf(ExitCode code) {
    return std::find(std::begin(SEVERITY), std::end(SEVERITY), code) - std::begin(SEVERITY);
}

}  // namespace

void Result::fail(const Failure& failure) {
    if (severityOf(failure.exitCode()) > severityOf(exitCode)) {
        exitCode = failure.exitCode();
        reason = Reason{failure.what(), failure.number()};
    }
}

nlohmann::ordered_json toJSON(const Result::Reason& reason) {
    nlohmann::ordered_json json = {{"text", reason.text}, {"message", nullptr}, {"code", nullptr}};
    if (reason.number) {
        json["message"] = reason.number->message;
        json["code"] = reason.number->code;
    }
    return json;
}

nlohmann::ordered_json versionToJSON(const std::string& version) {
    return VeskLib::Host::isKnownVersion(version) ? nlohmann::ordered_json(version)
                                                  : nlohmann::ordered_json();
}

nlohmann::ordered_json partitionToJSON(unsigned int number, const std::string& name,
                                       const std::string& version) {
    return {{"number", number}, {"name", name}, {"bios_version", versionToJSON(version)}};
}

const char* statusOf(const Failure& failure) {
    switch (failure.exitCode()) {
        case ExitCode::REFUSED:
            return "refused";
        case ExitCode::UNKNOWN:
            return "unknown";
        default:
            return "failed";
    }
}

std::string describePartition(unsigned int number, const std::string& name) {
    return "Partition " + std::to_string(number) + (name.empty() ? "" : " (" + name + ")");
}

}  // namespace Efictl
