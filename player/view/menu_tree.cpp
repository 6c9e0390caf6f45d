#include "player/view/menu_tree.h"

#include <algorithm>
#include <iterator>
#include <stdexcept>

#include "nuv/text.h"
#include "player/system/user_error.h"
#include "player/view/labels.h"
#include "player/view/nearest.h"

namespace ostrevan::view {
namespace {

std::string names_of(const std::vector<menu_entry>& level) {
    std::string names;
    for (const auto& entry : level) names += (names.empty() ? "" : ", ") + entry.text;
    return names.empty() ? "nothing" : names;
}

using texts = std::vector<std::string>;

struct placed_entry {
    const menu_entry* entry;
    /// The texts of its submenus, and its own.
    texts path;
};
using placed_entries = std::vector<placed_entry>;

void append_entries(const std::vector<menu_entry>& level, texts& path, placed_entries& out) {
    for (const auto& entry : level) {
        path.push_back(entry.text);
        out.push_back({&entry, path});
        append_entries(entry.children, path, out);
        path.pop_back();
    }
}

placed_entries all_entries(const std::vector<menu_entry>& menu) {
    placed_entries all;
    texts path;
    append_entries(menu, path, all);
    return all;
}

texts split(std::string_view path) {
    texts parts;
    for (auto slash = path.find('/'); slash != std::string_view::npos; slash = path.find('/')) {
        parts.emplace_back(path.substr(0, slash));
        path.remove_prefix(slash + 1);
    }
    parts.emplace_back(path);
    return parts;
}

/// The last `count` texts of a path.
std::string end_of(const texts& path, std::size_t count) {
    std::string text;
    for (auto i = path.size() - count; i < path.size(); ++i) text += (text.empty() ? "" : "/") + path[i];
    return text;
}

using fitting = bool (*)(std::string_view text, std::string_view part);
bool is_same(std::string_view text, std::string_view part) { return nuv::equal_ascii_nocase(text, part); }
bool has_part(std::string_view text, std::string_view part) { return !part.empty() && find_label({text}, part).index; }

placed_entries ending_with(const placed_entries& all, const texts& end, fitting fits) {
    placed_entries found;
    std::ranges::copy_if(all, std::back_inserter(found), [&](const placed_entry& each) {
        return each.path.size() >= end.size() &&
               std::equal(end.rbegin(), end.rend(), each.path.rbegin(),
                          [&](const std::string& part, const std::string& text) { return fits(text, part); });
    });
    return found;
}

const menu_entry* find_submenu(const placed_entries& all, const texts& end) {
    for (const auto& [entry, path] : ending_with(all, end, is_same))
        if (!entry->run) return entry;
    return nullptr;
}

[[noreturn]] void throw_several(std::string_view path, const placed_entries& found) {
    std::string message = "More than one command fits \"" + std::string(path) + "\":";
    for (const auto& each : found) message += "\n  " + end_of(each.path, each.path.size());
    throw system::user_error(message);
}

[[noreturn]] void throw_none(const std::vector<menu_entry>& menu, const placed_entries& all, std::string_view path) {
    auto end = split(path);
    const auto name = "\"" + std::string(path) + "\"";
    if (const auto* const submenu = find_submenu(all, end))
        throw system::user_error(name + " is a submenu with: " + names_of(submenu->children) + ".");
    texts candidates;
    for (const auto& each : all)
        if (each.entry->run && each.path.size() >= end.size()) candidates.push_back(end_of(each.path, end.size()));
    end.pop_back();
    const auto* const submenu = end.empty() ? nullptr : find_submenu(all, end);
    throw system::user_error("There is no menu entry " + name + "." +
                             (submenu != nullptr ? "" : did_you_mean(path, candidates)) +
                             " There is: " + names_of(submenu != nullptr ? submenu->children : menu) + ".");
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
    const auto all = all_entries(menu);
    const auto end = split(path);
    for (const auto fits : {is_same, has_part}) {
        auto found = ending_with(all, end, fits);
        std::erase_if(found, [](const placed_entry& each) { return !each.entry->run; });
        const auto whole = std::ranges::find(found, end.size(), [](const placed_entry& each) { return each.path.size(); });
        if (fits == is_same && whole != found.end()) return *whole->entry;
        if (found.size() == 1) return *found.front().entry;
        if (!found.empty()) throw_several(path, found);
    }
    throw_none(menu, all, path);
}

const menu_entry* find_command(const std::vector<menu_entry>& menu, const nuv::guid& id) {
    for (const auto& entry : menu) {
        if (entry.run && entry.id == id) return &entry;
        if (const auto* const found = find_command(entry.children, id)) return found;
    }
    return nullptr;
}

}  // namespace ostrevan::view
