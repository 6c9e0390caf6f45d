#include <gtest/gtest.h>

#include <fstream>
#include <iterator>
#include <regex>

#include "player/titleformat/function.h"
#include "tests/player/titleformat/fields.h"

namespace ostrevan::titleformat {
namespace {

std::string document() {
    std::ifstream file(DOCS_FOLDER "/title-formatting.md");
    return {std::istreambuf_iterator(file), {}};
}

const table_of_fields track({{"artist", "Sigur Rós"}, {"title", "Hoppípolla"}, {"tracknumber", "3/12"}},
                            {{"play_count", "0"}, {"last_played", "N/A"}});

TEST(documentation, examples_give_what_they_promise) {
    const std::string text = document();
    const std::regex form("`([^`]+)` → `([^`]+)`");
    const std::sregex_iterator examples(text.begin(), text.end(), form), none;
    EXPECT_GT(std::distance(examples, none), 40);
    for (auto example = examples; example != none; ++example)
        EXPECT_EQ(compile((*example)[1].str()).run(track).text, (*example)[2].str()) << (*example)[1];
}

TEST(documentation, names_every_function) {
    const std::string text = document();
    for (const auto group : {logic_functions(), number_functions(), text_functions(), part_functions()})
        for (const function& item : group)
            EXPECT_NE(text.find("| `$" + std::string(item.name) + '('), std::string::npos) << item.name;
}

}  // namespace
}  // namespace ostrevan::titleformat
