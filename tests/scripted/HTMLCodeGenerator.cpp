#include <VeskLib/Gui/HTMLCodeGenerator.h>

#include "tests/scripted/Recorder.h"
#include "tests/scripted/Script.h"

#include <iostream>

using namespace VeskLib::Scripted;

namespace VeskLib::Gui {

HTMLCodeGenerator::HTMLCodeGenerator(const std::string& skeletonFile,
                                     const std::map<std::string, HTMLComponent*>* components)
    : skeletonFile(skeletonFile), components(components) {
    objectMade(this, describe("HTMLCodeGenerator", skeletonFile));
}

HTMLCodeGenerator::~HTMLCodeGenerator() {
    objectDeleted(this);
}

void HTMLCodeGenerator::setSkeletonFile(const std::string& newSkeletonFile) {
    record("setSkeletonFile " + newSkeletonFile);
    skeletonFile = newSkeletonFile;
}

// Prints "[skeleton\n|name=component\n|name=component]". The lines let a failed comparison name the
// components that differ.
void HTMLCodeGenerator::printHTML() const {
    record("printHTML " + skeletonFile);
    const auto error = script().skeletonErrors.find(skeletonFile);
    if (error != script().skeletonErrors.end()) {
        throw makeScriptedException(error->second);
    }
    std::cout << "[" << skeletonFile;
    for (const auto& [name, component] : *components) {
        std::cout << "\n|" << name << "=";
        if (component != nullptr) {
            component->printHTML();
        }
    }
    std::cout << "]";
}

}  // namespace VeskLib::Gui
