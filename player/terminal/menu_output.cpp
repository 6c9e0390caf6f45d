#include "player/terminal/menu_output.h"

#include <stdexcept>

namespace ostrevan::terminal {
namespace {

const char* mark_of(const view::menu_entry& entry) {
    if (!entry.is_checked) return "";
    return entry.is_radio ? " (*)" : " [x]";
}

void print_level(std::ostream& out, const std::vector<view::menu_entry>& level, std::size_t depth) {
    for (const auto& entry : level) {
        out << std::string(2 * depth, ' ') << entry.text << (entry.run ? "" : "/") << mark_of(entry)
            << (entry.is_enabled ? "" : " (greyed)") << '\n';
        print_level(out, entry.children, depth + 1);
    }
}

}  // namespace

void print_menu(std::ostream& out, const std::vector<view::menu_entry>& menu) { print_level(out, menu, 0); }

void run_entry(run_context& context, const view::menu_entry& entry, const char* when) {
    if (!entry.is_enabled) throw std::runtime_error("\"" + entry.text + "\" is greyed " + when + ".");
    context.on_main(entry.run);
    context.job.wait_until_idle();
}

std::string path_of(const std::vector<view::menu_entry>& menu, const view::menu_entry& entry) {
    for (const auto& each : menu) {
        if (&each == &entry) return each.text;
        if (const auto below = path_of(each.children, entry); !below.empty()) return each.text + "/" + below;
    }
    return {};
}

}  // namespace ostrevan::terminal
