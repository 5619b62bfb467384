#include "client/page/BoardPage.h"

#include "client/page/Markup.h"

#include <algorithm>
#include <array>
#include <charconv>

namespace Efictl {

namespace {

// The columns of the tables.
enum MenuColumn : std::size_t { NUMBER, NAME, VERSION, LAST_BACKUP, LAST_RESTORE, MENU_COLUMNS };
enum TargetColumn : std::size_t { BOX, TARGET_NUMBER, TARGET_NAME, TARGET_VERSION };

bool readNumber(const std::string& text, unsigned int& number) {
    const char* const end = text.data() + text.size();
    const auto [rest, error] = std::from_chars(text.data(), end, number);
    return error == std::errc() && rest == end;
}

int numberIn(const Element& element, const char* attribute) {
    unsigned int number = 0;
    return readNumber(element.attribute(attribute), number) && number <= 0xFFFF
               ? static_cast<int>(number)
               : 0;
}

// Returns the text of an element with each run of white space replaced by one space.
std::string foldedText(const Element& element) {
    std::string folded;
    for (const char character : element.text()) {
        const bool isSpace =
            std::string_view(" \t\r\n\f").find(character) != std::string_view::npos;
        if (!isSpace) {
            folded += character;
        } else if (!folded.empty() && folded.back() != ' ') {
            folded += ' ';
        }
    }
    if (!folded.empty() && folded.back() == ' ') {
        folded.pop_back();
    }
    return folded;
}

Notice readNotice(const Element& element) {
    Notice notice;
    notice.outcome = element.attribute("data-outcome");
    const Element numbered = element.first(hasAttribute("data-message"));
    if (numbered) {
        notice.message = numberIn(numbered, "data-message");
        notice.code = numberIn(numbered, "data-code");
    }
    for (const Element& paragraph : element.all(hasTag(GUMBO_TAG_P))) {
        // Leaves out the label of the outcome, such as "Refused".
        if (paragraph.attribute("class") != "outcome") {
            notice.text += (notice.text.empty() ? "" : " ") + foldedText(paragraph);
        }
    }
    return notice;
}

std::string timeIn(const Element& cell) {
    const Element time = cell.first(hasTag(GUMBO_TAG_TIME));
    return time ? time.attribute("datetime") : "";
}

std::vector<std::vector<Element>> rowsOf(const Element& table) {
    std::vector<std::vector<Element>> rows;
    for (const Element& row : table.all(hasTag(GUMBO_TAG_TR))) {
        rows.push_back(row.all(hasTag(GUMBO_TAG_TD)));
    }
    return rows;
}

void readMenu(const Element& root, BoardPage& page) {
    page.isMenu = bool(root.first(hasAttribute("href", "/activity.cgi"))) &&
                  bool(root.first(hasAttribute("aria-labelledby", "functions")));
    const Element round = root.first(hasAttribute("aria-labelledby", "round"));
    if (!round) {
        return;
    }
    for (const std::vector<Element>& cells : rowsOf(round)) {
        PartitionRow row;
        if (cells.size() == MENU_COLUMNS && readNumber(cells[NUMBER].text(), row.number)) {
            row.name = cells[NAME].text();
            row.version = cells[VERSION].text();
            row.lastBackup = timeIn(cells[LAST_BACKUP]);
            row.lastRestore = timeIn(cells[LAST_RESTORE]);
            page.partitions.push_back(row);
        }
    }
}

// Reads partition, name and version of the file. Ignores the date.
void readFileFacts(const Element& facts, Selection& selection) {
    const std::vector<Element> values = facts.all(hasTag(GUMBO_TAG_DD));
    const std::size_t count = 4;
    if (values.size() != count || !readNumber(values[0].text(), selection.partition)) {
        return;
    }
    selection.partitionName = values[1].text();
    selection.version = values[3].text();
}

void readSelection(const Element& root, BoardPage& page) {
    const Element staged = root.first(hasAttribute("name", "staged_file"));
    const Element facts = root.first(hasAttribute("class", "facts"));
    const Element table = root.first(hasAttribute("class", "targets"));
    if (!staged || !facts || !table) {
        return;
    }
    Selection selection;
    selection.stagedFile = staged.attribute("value");
    readFileFacts(facts, selection);
    for (const std::vector<Element>& cells : rowsOf(table)) {
        PartitionRow row;
        if (cells.size() > TARGET_VERSION && readNumber(cells[TARGET_NUMBER].text(), row.number)) {
            row.name = cells[TARGET_NAME].text();
            row.version = cells[TARGET_VERSION].text();
            selection.targets.push_back(row);
        }
    }
    page.selection = std::move(selection);
}

void readHeader(const Element& root, BoardPage& page) {
    const Element title = root.first(hasTag(GUMBO_TAG_TITLE));
    page.title = title ? foldedText(title) : "";
    const Element name = root.first(hasAttribute("class", "board-name"));
    page.boardName = name ? name.text() : "";
}

}  // namespace

const Notice* BoardPage::notice() const {
    for (const char* const outcome : {"unknown", "refused", "done", ""}) {
        const auto found =
            std::find_if(notices.begin(), notices.end(),
                         [outcome](const Notice& notice) { return notice.outcome == outcome; });
        if (found != notices.end()) {
            return &*found;
        }
    }
    return nullptr;
}

BoardPage readBoardPage(std::string_view text) {
    const Markup markup(text);
    const Element root = markup.root();
    BoardPage page;
    readHeader(root, page);
    for (const Element& element : root.all(hasAttribute("data-outcome"))) {
        page.notices.push_back(readNotice(element));
    }
    readMenu(root, page);
    const Element link = root.first(hasAttribute("id", "download_link"));
    page.downloadPath = link ? link.attribute("href") : "";
    readSelection(root, page);
    return page;
}

}  // namespace Efictl
