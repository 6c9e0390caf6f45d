#include <gtest/gtest.h>

#include <fstream>
#include <iterator>

#include "player/titleformat/function.h"
#include "tests/player/titleformat/fields.h"

namespace ostrevan::titleformat {
namespace {

std::string document() {
    std::ifstream file(DOCS_FOLDER "/title-formatting.md");
    return {std::istreambuf_iterator(file), {}};
}

const table_of_fields documented({{"artist", "Sigur Rós"}, {"title", "Hoppípolla"}, {"tracknumber", "3/12"}},
                                 {{"play_count", "0"}, {"last_played", "N/A"}});

TEST(documentation, examples_give_what_they_promise) {
    const std::string text = document();
    constexpr std::string_view arrow = "` → `";
    int checked = 0;
    for (auto at = text.find(arrow); at != std::string::npos; at = text.find(arrow, at + 1), ++checked) {
        const auto start = text.rfind('`', at - 1) + 1, result = at + arrow.size();
        const std::string script = text.substr(start, at - start);
        EXPECT_EQ(compile(script).run(documented).text, text.substr(result, text.find('`', result) - result)) << script;
    }
    EXPECT_GT(checked, 40);
}

TEST(documentation, names_every_function) {
    const std::string text = document();
    for (const auto group : {logic_functions(), number_functions(), text_functions(), part_functions()})
        for (const function& item : group)
            EXPECT_NE(text.find("| `$" + std::string(item.name) + '('), std::string::npos) << item.name;
}

}  // namespace
}  // namespace ostrevan::titleformat
