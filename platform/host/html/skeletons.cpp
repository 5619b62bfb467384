#include "platform/host/html/skeletons.h"

#include "platform/host/base/idleWork.h"
#include "platform/host/base/platformException.h"
#include "platform/host/storage/files.h"
#include "platform/host/text/Catalogue.h"

#include <VeskLib/getCGIPath.h>
#include <VeskLib/trace/VeskTrace.h>

#include <map>
#include <memory>
#include <vector>

namespace VeskLib::Host {

namespace {

const std::size_t LARGEST_SKELETON = 256 * 1024;

struct UnusableSkeleton {
    std::string problem;
};

std::unique_ptr<Skeleton> load(const std::string& skeletonFile) {
    std::vector<unsigned char> bytes;
    if (!readFile(getCGIPath(skeletonFile.c_str()), LARGEST_SKELETON, bytes)) {
        throw UnusableSkeleton{"The skeleton " + skeletonFile + " cannot be read."};
    }
    try {
        return std::make_unique<Skeleton>(
            std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    } catch (const SkeletonError& error) {
        throw UnusableSkeleton{skeletonFile + ":" + std::to_string(error.line) + ":" +
                               std::to_string(error.column) + ": " + error.problem};
    }
}

const Skeleton& read(const std::string& skeletonFile) {
    static std::map<std::string, std::unique_ptr<Skeleton>> skeletons;
    const auto known = skeletons.find(skeletonFile);
    if (known != skeletons.end()) {
        return *known->second;
    }
    return *skeletons.emplace(skeletonFile, load(skeletonFile)).first->second;
}

std::string& plannedFile() {
    static std::string file;
    return file;
}

void readAhead() {
    openTexts();
    read(SHELL_SKELETON);
    read(plannedFile());
}

}  // namespace

const Skeleton& findSkeleton(const std::string& skeletonFile) {
    try {
        return read(skeletonFile);
    } catch (const UnusableSkeleton& skeleton) {
        trace::VeskTrace(1, 1, 1).putLog(0, skeleton.problem.c_str());
        throw makePlatformException(SKELETON_NOT_USABLE, "HTMLCodeGenerator::printHTML");
    }
}

void planSkeleton(const std::string& skeletonFile) {
    if (plannedFile().empty()) {
        plannedFile() = skeletonFile;
        planIdleWork(readAhead);
    }
}

}  // namespace VeskLib::Host
