#pragma once

#include <VeskLib/Gui/HTMLCodeGenerator.h>
#include <VeskLib/Gui/HTMLComponent.h>

#include <map>
#include <string>

namespace VeskLib::Gui {

// The page shell, which surrounds every page. Owns its components and its generator.
class HTMLPage {
public:
    // Creates the shell with an empty map and the generator for shell number `shell`. This program
    // uses shell 1.
    explicit HTMLPage(int shell);
    HTMLPage(const HTMLPage&) = delete;
    HTMLPage& operator=(const HTMLPage&) = delete;

    // Deletes the generator, then the components in the map's order. Implemented by the program
    // (html/HTMLPage.cpp); the constructor is the platform's.
    virtual ~HTMLPage();

    std::map<std::string, HTMLComponent*> componentMap;
    HTMLCodeGenerator* generator;
};

}  // namespace VeskLib::Gui
