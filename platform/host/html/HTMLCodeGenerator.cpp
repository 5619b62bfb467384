#include <VeskLib/Gui/HTMLCodeGenerator.h>

#include "platform/host/html/skeletons.h"

namespace VeskLib::Gui {

HTMLCodeGenerator::HTMLCodeGenerator(const std::string& skeletonFile,
                                     const std::map<std::string, HTMLComponent*>* components)
    : skeletonFile(skeletonFile), components(components) {
    // The first generator is the page's: its skeleton is read while the back-end works on the
    // page's first request.
    Host::planSkeleton(skeletonFile);
}

HTMLCodeGenerator::~HTMLCodeGenerator() = default;

void HTMLCodeGenerator::setSkeletonFile(const std::string& newSkeletonFile) {
    skeletonFile = newSkeletonFile;
}

void HTMLCodeGenerator::printHTML() const {
    Host::findSkeleton(skeletonFile).print(*components);
}

}  // namespace VeskLib::Gui
