#include "player/front/columns.h"

#include <stdexcept>

#include "nuv/text.h"
#include "ostrevan/library_columns.h"

namespace ostrevan::front {
namespace {

struct own_column {
    const char* name;
    const char* script;
    bool align_right;
    bool shown_by_default;
};

constexpr own_column own_columns[] = {
    {"Artist", "[%artist%]", false, true},
    {"Album", "[%album%]", false, false},
    {"Track", "[$num(%tracknumber%,2)]", true, false},
    {"Title", "%title%", false, true},
    {"Date", "[%date%]", false, false},
    {"Genre", "[%genre%]", false, false},
    {"Length", "[%length%]", true, false},
    {"Codec", "[%codec%]", false, false},
    {"Path", "%path%", false, false},
};

column made_of(const own_column& own) { return {own.name, own.script, own.script, own.align_right}; }

void append_component_columns(const service_registry& services, std::vector<column>& out) {
    services.for_each<library_column_provider>([&](library_column_provider& provider) {
        for (std::size_t i = 0; i < provider.get_column_count(); ++i)
            out.push_back({provider.get_column_name(i), provider.get_display_script(i), provider.get_sort_script(i),
                           (provider.get_column_flags(i) & column_align_right) != 0});
    });
}

}  // namespace

std::vector<column> all_columns(const service_registry& services) {
    std::vector<column> out;
    for (const auto& own : own_columns) out.push_back(made_of(own));
    append_component_columns(services, out);
    return out;
}

std::vector<column> default_columns(const service_registry& services) {
    std::vector<column> out;
    for (const auto& own : own_columns)
        if (own.shown_by_default) out.push_back(made_of(own));
    append_component_columns(services, out);
    return out;
}

column find_column(const std::vector<column>& columns, std::string_view name) {
    std::string names;
    for (const auto& each : columns) {
        if (nuv::equal_ascii_nocase(each.name, name)) return each;
        names += (names.empty() ? "" : ", ") + each.name;
    }
    throw std::invalid_argument("There is no column \"" + std::string(name) + "\". Columns are: " + names + ".");
}

}  // namespace ostrevan::front
