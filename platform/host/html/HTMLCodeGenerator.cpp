#include <VeskLib/Gui/HTMLCodeGenerator.h>

#include "platform/host/base/platformException.h"
#include "platform/host/html/Skeleton.h"
#include "platform/host/storage/files.h"

#include <VeskLib/getCGIPath.h>
#include <VeskLib/trace/VeskTrace.h>

#include <memory>
#include <utility>

namespace VeskLib::Gui {

namespace {

const std::size_t LARGEST_SKELETON = 256 * 1024;

[[noreturn]] void refuse(const std::string& problem) {
    trace::VeskTrace(1, 1, 1).putLog(0, problem.c_str());
    throw Host::makePlatformException(Host::SKELETON_NOT_USABLE, "HTMLCodeGenerator::printHTML");
}

std::unique_ptr<Host::Skeleton> load(const std::string& skeletonFile) {
    std::vector<unsigned char> bytes;
    if (!Host::readFile(getCGIPath(skeletonFile.c_str()), LARGEST_SKELETON, bytes)) {
        refuse("The skeleton " + skeletonFile + " cannot be read.");
    }
    try {
        return std::make_unique<Host::Skeleton>(
            std::string(reinterpret_cast<const char*>(bytes.data()), bytes.size()));
    } catch (const Host::SkeletonError& error) {
        refuse(skeletonFile + ":" + std::to_string(error.line) + ":" +
               std::to_string(error.column) + ": " + error.problem);
    }
}

// Reads each skeleton once, however many rows of a table use it.
const Host::Skeleton& findSkeleton(const std::string& skeletonFile) {
    static std::map<std::string, std::unique_ptr<Host::Skeleton>> skeletons;
    const auto known = skeletons.find(skeletonFile);
    if (known != skeletons.end()) {
        return *known->second;
    }
    return *skeletons.emplace(skeletonFile, load(skeletonFile)).first->second;
}

}  // namespace

HTMLCodeGenerator::HTMLCodeGenerator(const std::string& skeletonFile,
                                     const std::map<std::string, HTMLComponent*>* components)
    : skeletonFile(skeletonFile), components(components) {
}

HTMLCodeGenerator::~HTMLCodeGenerator() = default;

void HTMLCodeGenerator::setSkeletonFile(const std::string& newSkeletonFile) {
    skeletonFile = newSkeletonFile;
}

void HTMLCodeGenerator::printHTML() const {
    findSkeleton(skeletonFile).print(*components);
}

}  // namespace VeskLib::Gui
