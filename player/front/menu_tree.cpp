#include "player/front/menu_tree.h"

#include <algorithm>
#include <stdexcept>

#include "nuv/text.h"

namespace ostrevan::front {
namespace {

std::string names_of(const std::vector<menu_entry>& level) {
    std::string names;
    for (const auto& entry : level) names += (names.empty() ? "" : ", ") + entry.text;
    return names.empty() ? "nothing" : names;
}

}  // namespace

std::vector<menu_entry>& submenu_at(std::vector<menu_entry>& menu, std::string_view path) {
    auto* level = &menu;
    while (!path.empty()) {
        const auto slash = path.find('/');
        const auto name = path.substr(0, slash);
        path = slash == std::string_view::npos ? std::string_view{} : path.substr(slash + 1);
        auto it = std::ranges::find_if(*level, [&](const menu_entry& e) { return !e.run && e.text == name; });
        if (it == level->end()) it = level->insert(level->end(), menu_entry{.text = std::string(name)});
        level = &it->children;
    }
    return *level;
}

const menu_entry& find_command(const std::vector<menu_entry>& menu, std::string_view path) {
    const auto* level = &menu;
    auto rest = path;
    for (;;) {
        const auto slash = rest.find('/');
        const auto name = rest.substr(0, slash);
        const auto it =
            std::ranges::find_if(*level, [&](const menu_entry& e) { return nuv::equal_ascii_nocase(e.text, name); });
        if (it == level->end())
            throw std::invalid_argument("There is no menu entry \"" + std::string(path) + "\". At \"" + std::string(name) +
                                        "\" there is: " + names_of(*level) + ".");
        if (slash == std::string_view::npos) {
            if (it->run) return *it;
            throw std::invalid_argument("\"" + std::string(path) + "\" is a submenu with: " + names_of(it->children) + ".");
        }
        level = &it->children;
        rest = rest.substr(slash + 1);
    }
}

const menu_entry* find_command(const std::vector<menu_entry>& menu, const nuv::guid& id) {
    for (const auto& entry : menu) {
        if (entry.run && entry.id == id) return &entry;
        if (const auto* const found = find_command(entry.children, id)) return found;
    }
    return nullptr;
}

}  // namespace ostrevan::front
