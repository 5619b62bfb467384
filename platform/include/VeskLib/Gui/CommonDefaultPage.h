#pragma once

#include <VeskLib/Gui/HTMLCodeGenerator.h>
#include <VeskLib/Gui/HTMLComponent.h>
#include <VeskLib/Gui/MessageMgr.h>
#include <VeskLib/trace/VeskTrace.h>

#include <map>
#include <string>

namespace VeskLib::Gui {

// The base of all pages. The program carries every operation but makePage()
// (html/CommonDefaultPage.cpp).
class CommonDefaultPage : public HTMLComponent {
public:
    // `messageMgr` and `displayMode` must outlive the page. `skeletonFile` is the board's path of
    // the page's skeleton.
    CommonDefaultPage(MessageMgr& messageMgr, int* displayMode, const std::string& skeletonFile);

    // Deletes the components in the map's order, then the generator.
    ~CommonDefaultPage() override;

    // Prints the page's skeleton.
    void printHTML() const override;

    // True when the page holds an error and nothing but getMessage() is to be shown.
    bool isError() const override;

    // Build the page for a plain display and for a posted action; nothing here.
    virtual void makeDispPage();
    virtual void makeConfigPage();

    // True when getMessage() is to be shown as a browser alert over the page.
    bool isAlert() const;

    // The texts for the operator, several joined by "<br>".
    const std::string& getMessage() const;

protected:
    // Runs makeConfigPage() for a posted request and makeDispPage() for any other. Called once,
    // at the end of the constructor of a page class.
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
