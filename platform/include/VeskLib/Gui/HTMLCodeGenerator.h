#pragma once

#include <VeskLib/Gui/HTMLComponent.h>

#include <map>
#include <string>

namespace VeskLib::Gui {

// Prints a skeleton file, with components in place of its marks.
class HTMLCodeGenerator {
public:
    // `skeletonFile` is the file's path on the board, before getCGIPath(). `components` is not
    // owned, must outlive the generator, and is not read before printHTML().
    HTMLCodeGenerator(const std::string& skeletonFile,
                      const std::map<std::string, HTMLComponent*>* components);
    HTMLCodeGenerator(const HTMLCodeGenerator&) = delete;
    HTMLCodeGenerator& operator=(const HTMLCodeGenerator&) = delete;
    virtual ~HTMLCodeGenerator();

    void setSkeletonFile(const std::string& skeletonFile);

    // Prints the skeleton to the standard output. A name that is not in the map prints nothing.
    // Throws PException, and prints nothing, if the file cannot be read or is malformed.
    void printHTML() const;

private:
    std::string skeletonFile;
    const std::map<std::string, HTMLComponent*>* components;
};

}  // namespace VeskLib::Gui
