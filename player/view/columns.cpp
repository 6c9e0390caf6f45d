#include "player/view/columns.h"

#include <stdexcept>

#include "ostrevan/library_columns.h"
#include "player/system/user_error.h"
#include "player/titleformat/script.h"
#include "player/view/labels.h"

namespace ostrevan::view {
namespace {

struct own_column {
    const char* name;
    const char* script;
    const char* sort_script;  // null: sorts by what is shown
    bool align_right;
    bool shown_by_default;
};

constexpr own_column own_columns[] = {
    {"Artist", "[%artist%]", nullptr, false, true},
    {"Album", "[%album%]", nullptr, false, false},
    {"Track", "[$num(%tracknumber%,2)]", nullptr, true, false},
    {"Title", "%title%", nullptr, false, true},
    {"Date", "[%date%]", nullptr, false, false},
    {"Genre", "[%genre%]", nullptr, false, false},
    {"Length", "[%length%]", "[%length_seconds%]", true, false},
    {"Codec", "[%codec%]", nullptr, false, false},
    {"Path", "%path%", nullptr, false, false},
};

column made_of(const own_column& own) {
    return {own.name, own.script, own.sort_script == nullptr ? own.script : own.sort_script, own.align_right, own.name};
}

/// Throws when a script of the column has a mistake.
column column_of(library_column_provider& provider, std::size_t index) {
    column made{provider.get_column_name(index), provider.get_display_script(index), provider.get_sort_script(index),
                (provider.get_column_flags(index) & column_align_right) != 0,
                "{" + nuv::guid_text(provider.get_column_id(index)) + "}"};
    if (const auto clicks = query_service<library_column_clicks>(provider)) {
        made.click_text = clicks->get_click_text(index);
        if (!made.click_text.empty())
            made.click = [&clicks = *clicks, index](double place, metadb_handle_list_cref tracks) {
                core::call_component(clicks, [&] { clicks.on_click(index, place, tracks); });
            };
    }
    for (const auto& script : {made.display_script, made.sort_script}) (void)titleformat::compile(script);
    return made;
}

void append_component_columns(const core::service_registry& services, std::vector<column>& out) {
    services.for_each<library_column_provider>([&](library_column_provider& provider) {
        for (std::size_t i = 0; i < provider.get_column_count(); ++i) {
            const auto doing = "column " + std::to_string(i + 1) + ", which is left out";
            services.guard().call(provider, doing.c_str(), [&] { out.push_back(column_of(provider, i)); });
        }
    });
}

}  // namespace

std::vector<column> all_columns(const core::service_registry& services) {
    std::vector<column> out;
    for (const auto& own : own_columns) out.push_back(made_of(own));
    append_component_columns(services, out);
    return out;
}

std::vector<column> default_columns(const core::service_registry& services) {
    std::vector<column> out;
    for (const auto& own : own_columns)
        if (own.shown_by_default) out.push_back(made_of(own));
    append_component_columns(services, out);
    return out;
}

column find_column(const std::vector<column>& columns, std::string_view name) {
    std::string names;
    std::vector<std::string_view> labels;
    for (const auto& each : columns) {
        labels.push_back(each.name);
        names += (names.empty() ? "" : ", ") + each.name;
    }
    const auto match = find_label(labels, name);
    if (match.index) return columns[*match.index];
    throw system::user_error((match.is_ambiguous ? "More than one column fits \"" : "There is no column \"") +
                             std::string(name) + "\". Columns are: " + names + ".");
}

}  // namespace ostrevan::view
