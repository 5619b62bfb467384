#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <map>
#include <string>

namespace VeskLib::Gui {

// Prints a skeleton file with components put at its named places.
class HTMLCodeGenerator {
public:
    // `skeletonFile` is the board's path of the file (before getCGIPath()). `components` is not
    // owned and must outlive the generator.
    HTMLCodeGenerator(const std::string& skeletonFile,
                      const std::map<std::string, HTMLComponent*>* components);
    HTMLCodeGenerator(const HTMLCodeGenerator&) = delete;
    HTMLCodeGenerator& operator=(const HTMLCodeGenerator&) = delete;
    virtual ~HTMLCodeGenerator();

    void setSkeletonFile(const std::string& skeletonFile);

    // Writes the skeleton to the standard output. A place whose name is not in the map stays
    // empty. Throws PException when the file cannot be read or is malformed.
    void printHTML() const;

private:
    std::string skeletonFile;
    const std::map<std::string, HTMLComponent*>* components;
};

}  // namespace VeskLib::Gui
