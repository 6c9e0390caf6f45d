#include "player/view/settings_tree.h"

#include <algorithm>
#include <functional>
#include <stdexcept>

#include "player/system/user_error.h"
#include "player/view/labels.h"

namespace ostrevan::view {
namespace {

[[noreturn]] void throw_no_such(const std::vector<setting_entry>& tree, std::string_view name, const char* problem) {
    std::string message = std::string(problem) + " \"" + std::string(name) + "\". Settings are:";
    for (const auto& entry : tree)
        if (entry.checkbox != nullptr)
            message += "\n  {" + nuv::guid_text(entry.setting->id()) + "} " + entry.setting->label();
    throw system::user_error(message);
}

}  // namespace

std::vector<setting_entry> settings_tree(const core::service_registry& services) {
    std::vector<advanced_setting*> all;
    services.for_each<advanced_setting>(
        [&](advanced_setting& setting) {
            (void)setting.label();  // the only call that may throw
            all.push_back(&setting);
        },
        "its settings");
    std::ranges::sort(all, [](const advanced_setting* a, const advanced_setting* b) {
        return std::pair(a->sort_priority(), a->label()) < std::pair(b->sort_priority(), b->label());
    });

    std::vector<setting_entry> tree;
    const std::function<void(const nuv::guid&, std::size_t)> append_children = [&](const nuv::guid& parent,
                                                                                   std::size_t depth) {
        for (auto* setting : all) {
            if (setting->parent() != parent) continue;
            tree.push_back({setting, query_service<advanced_checkbox>(*setting).get(), depth});
            if (depth < all.size()) append_children(setting->id(), depth + 1);
        }
    };
    std::vector<nuv::guid> roots;
    for (const auto* setting : all) {
        const auto parent = setting->parent();
        const bool offered = std::ranges::any_of(all, [&](const auto* other) { return other->id() == parent; });
        if (!offered && std::ranges::find(roots, parent) == roots.end()) roots.push_back(parent);
    }
    for (const auto& root : roots) append_children(root, 0);
    return tree;
}

advanced_checkbox& find_checkbox(const std::vector<setting_entry>& tree, std::string_view name) {
    const auto id = nuv::parse_guid(name);
    std::vector<advanced_checkbox*> checkboxes;
    std::vector<std::string> labels;
    for (const auto& entry : tree) {
        if (entry.checkbox == nullptr) continue;
        if (id && entry.setting->id() == *id) return *entry.checkbox;
        checkboxes.push_back(entry.checkbox);
        labels.push_back(entry.setting->label());
    }
    const auto match = find_label({labels.begin(), labels.end()}, name);
    if (match.index) return *checkboxes[*match.index];
    throw_no_such(tree, name, match.is_ambiguous ? "More than one setting fits" : "There is no setting");
}

}  // namespace ostrevan::view
