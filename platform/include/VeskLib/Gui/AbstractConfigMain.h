#pragma once

#include <VeskLib/Gui/AbstractMain.h>

#include <string>
#include <utility>

namespace VeskLib::Gui {

// A request to a screen that changes or saves the server's configuration.
class AbstractConfigMain : public AbstractMain {
public:
    explicit AbstractConfigMain(std::string title) : title(std::move(title)) {}
    ~AbstractConfigMain() override = default;

    int individualProc() override = 0;

protected:
    std::string title;  // of the screen
};

}  // namespace VeskLib::Gui
