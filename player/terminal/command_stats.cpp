#include <algorithm>
#include <chrono>

#include "player/app/listening_summary.h"
#include "player/summary/page.h"
#include "player/system/user_error.h"
#include "player/terminal/command.h"
#include "player/terminal/stats_json.h"
#include "player/terminal/stats_text.h"
#include "player/terminal/track_json.h"
#include "player/terminal/written_file.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* stats_examples =
    "Examples:\n"
    "  ostrevan stats\n"
    "  ostrevan stats --from 2026\n"
    "  ostrevan stats --from 2026-03 --to 2026-05 '%genre% HAS jazz'\n"
    "  ostrevan stats --limit 50 --json | jq '.top_artists'\n"
    "  ostrevan stats --from 2026 --html year.html\n"
    "A PERIOD is a year, a month, a day, or a time of a day: 2026, 2026-03, 2026-03-01, '2026-03-01 18'.";

struct stats_words {
    std::vector<std::string> query{};
    std::optional<std::string> from{}, to{};
    std::size_t limit = 10;
    bool json = false;
    std::optional<std::string> html{};
};

query::period period_of(const std::string& text) {
    if (const auto period = query::parse_period(text)) return *period;
    throw system::user_error("\"" + text +
                             "\" is not a period. Write a year, a month or a day: 2026, 2026-03 or 2026-03-01.");
}

summary::question question_of(const stats_words& words) {
    summary::question wanted{.now = std::chrono::floor<std::chrono::seconds>(std::chrono::system_clock::now()),
                             .at_most = words.limit};
    if (words.from) wanted.period.first = period_of(*words.from).first;
    if (words.to) wanted.period.end = period_of(*words.to).end;
    if (wanted.period.first >= wanted.period.end)
        throw system::user_error("The period ends before it begins: --from " + *words.from + " --to " + *words.to + ".");
    return wanted;
}

std::optional<std::string> query_of(const stats_words& words) {
    if (words.query.empty()) return std::nullopt;
    std::string text;
    for (const auto& word : words.query) text += (text.empty() ? "" : " ") + word;
    return text;
}

void print_stats(run_context& context, const stats_words& words) {
    constexpr std::size_t usual_width = 80;
    if (words.html && words.html->empty()) throw system::user_error("--html needs the name of a file.");
    const auto wanted = question_of(words);
    const auto figures = app::listening_summary(context.player, query_of(words), wanted);
    const auto width = context.screen.width_of_output();
    if (words.html) {
        if (write_asking(context, *words.html, summary::page_of(wanted, figures), "Summary"))
            context.screen.note("Written: " + *words.html + ".");
    } else if (words.json) context.out << text_of(stats_json(wanted, figures)) << '\n';
    else write_stats(context.out, wanted, figures, width == 0 ? usual_width : width, width != 0);
}

const command_file stats_command(127, [](declared_command& program) {
    const auto words = std::make_shared<stats_words>();
    auto stats = program.add("stats", "What was played most, when, and what never", stats_examples);
    stats.add_option("QUERY", &words->query, "Only tracks that match, or with these words; without one, everything");
    stats.add_option("--from", &words->from, "Plays since the beginning of this period").called("PERIOD");
    stats.add_option("--to", &words->to, "Plays until the end of this period").called("PERIOD");
    stats.add_option("--limit", &words->limit, "How many names in each list").between(1, 1'000'000'000).show_default();
    stats.add_flag("--json", words->json, "An object");
    stats.add_option("--html", &words->html, "Write a page for a browser, which needs nothing else")
        .called("FILE")
        .excludes("--json");
    stats.run([words](run_context& context) { print_stats(context, *words); });
});

}  // namespace
}  // namespace ostrevan::terminal
