#include <gtest/gtest.h>

#include <fstream>

#include "player/query/query.h"

namespace ostrevan::query {
namespace {

TEST(documentation, queries_in_the_document_are_accepted) {
    std::ifstream file(DOCS_FOLDER "/query-language.md");
    int checked = 0;
    bool inside = false;
    for (std::string line; std::getline(file, line);) {
        const bool fence = line.starts_with("```");
        if (fence) inside = line == "```query";
        if (fence || !inside) continue;
        ++checked;
        EXPECT_NO_THROW((void)parse(line)) << line;
    }
    EXPECT_GT(checked, 0);
}

}  // namespace
}  // namespace ostrevan::query
