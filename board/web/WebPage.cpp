#include "board/web/WebPage.h"

#include "platform/host/html/attributes.h"
#include "platform/host/html/escape.h"
#include "platform/host/html/messageLines.h"
#include "platform/host/html/printText.h"
#include "platform/host/text/Catalogue.h"
#include "platform/host/text/issuedTexts.h"
#include "platform/host/web/pageHeader.h"

#include <VeskLib/Gui/HTMLCodeGenerator.h>
#include <VeskLib/Gui/MessageMgr.h>
#include <VeskLib/Gui/TextString.h>

#include <string_view>
#include <utility>

namespace VeskLib::Board {

namespace {

const char* const FRAME_SKELETON = "/usr/local/www/skel/skeleton_web_frame.txt";

// The page's body, which uses the same components as its frame.
class Body : public Gui::HTMLComponent {
public:
    Body(const std::string& skeleton, const std::map<std::string, Gui::HTMLComponent*>& components)
        : generator(skeleton, &components) {}

    void printHTML() const override { generator.printHTML(); }
    bool isError() const override { return false; }

private:
    Gui::HTMLCodeGenerator generator;
};

class Notice : public Gui::HTMLComponent {
public:
    explicit Notice(std::string message) : message(std::move(message)) {}

    void printHTML() const override { Host::printNotice(message, Host::Outcome::REFUSED); }
    bool isError() const override { return false; }

private:
    std::string message;
};

// Chooses the language of the pages. Each language is named in its own words.
class LanguageButtons : public Gui::HTMLComponent {
public:
    void printHTML() const override {
        const std::string_view shown = Host::languageTag(Host::requestLanguage());
        for (const auto& [tag, name] : Host::languages()) {
            Host::printText("<button type=\"submit\" name=\"language\"");
            Host::printAttribute("value", tag);
            Host::printAttribute("lang", tag);
            Host::printText(tag == shown ? " aria-current=\"true\">" : ">");
            Host::printEscaped(name);
            Host::printText("</button>\n");
        }
    }

    bool isError() const override { return false; }
};

}  // namespace

WebPage::WebPage(const std::string& bodySkeleton, int titleCaption) {
    Host::shareBoardName();
    putCaption("title", titleCaption);
    put("body", std::make_unique<Body>(bodySkeleton, components));
    put("languages", std::make_unique<LanguageButtons>());
}

WebPage::~WebPage() = default;

void WebPage::putText(const std::string& name, const std::string& text) {
    put(name, std::make_unique<Gui::TextString>(text));
}

void WebPage::putCaption(const std::string& name, int caption) {
    putText(name, Gui::MessageMgr(Host::requestLanguage()).getString(caption));
}

void WebPage::putNotice(const std::string& name, int caption, int detail) {
    put(name, std::make_unique<Notice>(Host::issueCaption(caption, detail)));
}

void WebPage::print() const {
    Gui::HTMLCodeGenerator(FRAME_SKELETON, &components).printHTML();
}

void WebPage::put(const std::string& name, std::unique_ptr<Gui::HTMLComponent> component) {
    components[name] = component.get();
    owned.push_back(std::move(component));
}

}  // namespace VeskLib::Board
