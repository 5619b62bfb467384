#pragma once

#include <VeskLib/Gui/HTMLCodeGenerator.h>
#include <VeskLib/Gui/HTMLComponent.h>

#include <map>
#include <string>

namespace VeskLib::Gui {

// The page shell: the outermost frame of every page. It owns its components and its generator.
class HTMLPage {
public:
    // Makes the shell with an empty map and the generator of shell number `shell`; this program
    // uses shell 1.
    explicit HTMLPage(int shell);
    HTMLPage(const HTMLPage&) = delete;
    HTMLPage& operator=(const HTMLPage&) = delete;

    // Deletes the generator, then the components in the map's order. The program carries this
    // one operation (html/HTMLPage.cpp), the platform the constructor.
    virtual ~HTMLPage();

    std::map<std::string, HTMLComponent*> componentMap;
    HTMLCodeGenerator* generator;
};

}  // namespace VeskLib::Gui
