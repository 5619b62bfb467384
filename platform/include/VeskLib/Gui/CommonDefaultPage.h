#pragma once

#include <VeskLib/Gui/HTMLCodeGenerator.h>
#include <VeskLib/Gui/HTMLComponent.h>
#include <VeskLib/Gui/MessageMgr.h>
#include <VeskLib/trace/VeskTrace.h>

#include <map>
#include <string>

namespace VeskLib::Gui {

// The base of all pages. The program implements every operation except makePage()
// (html/CommonDefaultPage.cpp).
class CommonDefaultPage : public HTMLComponent {
public:
    // `messageMgr` and `displayMode` must outlive the page. `skeletonFile` is the path of the
    // page's skeleton on the board, before getCGIPath().
    CommonDefaultPage(MessageMgr& messageMgr, int* displayMode, const std::string& skeletonFile);

    // Deletes the components in the map's order, then the generator.
    ~CommonDefaultPage() override;

    // Prints the page's skeleton.
    void printHTML() const override;

    // Returns true if the page failed and only getMessage() is to be shown.
    bool isError() const override;

    // Build the page for display and for a posted action. Do nothing in this class.
    virtual void makeDispPage();
    virtual void makeConfigPage();

    // Returns true if getMessage() is to be shown as a browser alert over the page.
    bool isAlert() const;

    // Returns the messages to the operator, joined by "<br>".
    const std::string& getMessage() const;

protected:
    // Calls makeConfigPage() for a POST request and makeDispPage() for any other. Called once, at
    // the end of a page class's constructor.
    void makePage();

    HTMLCodeGenerator* generator;
    MessageMgr& messageMgr;
    std::map<std::string, HTMLComponent*> componentMap;
    trace::VeskTrace trace;
    int* displayMode;
    int traceModule;
    bool errorFlag;
    bool alertFlag;
    std::string message;
};

}  // namespace VeskLib::Gui
