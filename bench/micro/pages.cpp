// Benchmark of printing the rows of the backup page. BOARD_ROOT is a board with its skeletons.

#include "html/HTMLContainer.h"
#include "html/HTMLItem.h"

#include <VeskLib/Gui/RadioButton.h>
#include <VeskLib/Gui/TextString.h>

#include <benchmark/benchmark.h>

#include <iostream>
#include <memory>
#include <sstream>

namespace {

using namespace VeskLib::Gui;

const char* const ROW_SKELETON = "/usr/local/www/skel/skeleton_efi_backup_tbl.txt";
const int ALLOWED = 2;

void add(HTMLItem& row, const char* name, std::unique_ptr<HTMLComponent> component) {
    row.add(name, component.release());
}

std::unique_ptr<HTMLItem> makeRow(int partition) {
    const std::string number = std::to_string(partition);
    auto row = std::make_unique<HTMLItem>(ROW_SKELETON);
    auto choice = std::make_unique<RadioButton>("radio_button", "", "form_name", &ALLOWED);
    choice->add(number, "", false, false);
    add(*row, "radio_button", std::move(choice));
    add(*row, "pid", std::make_unique<TextString>(number));
    add(*row, "part_name", std::make_unique<TextString>("A name of an ordinary length"));
    return row;
}

// Makes and prints the rows, as each request does.
void printRows(benchmark::State& state) {
    std::stringbuf page;
    std::streambuf* const output = std::cout.rdbuf();
    for (auto _ : state) {
        HTMLContainer rows;
        for (int partition = 0; partition < state.range(0); ++partition) {
            rows.add(makeRow(partition));
        }
        page.str({});
        std::cout.rdbuf(&page);
        rows.printHTML();
        std::cout.rdbuf(output);
    }
    state.SetComplexityN(state.range(0));
    state.counters["rows"] = static_cast<double>(state.range(0));
}
BENCHMARK(printRows)->RangeMultiplier(2)->Range(1, 256)->Complexity(benchmark::oN);

}  // namespace
