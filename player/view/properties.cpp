#include "player/view/properties.h"

#include <algorithm>

namespace ostrevan::view {
namespace {

class section_collector final : public track_property_groups, public track_property_sink {
public:
    bool on_group(const char* group) override {
        section(group);
        return true;
    }
    void set_property(const char* group, double priority, const char* name, const char* value) override {
        section(group).rows.push_back({priority, name, value});
    }
    std::vector<property_section> finish() {
        for (auto& each : sections_) std::ranges::stable_sort(each.rows, {}, &property_section::row::priority);
        return std::move(sections_);
    }

private:
    property_section& section(const char* name) {
        const auto it = std::ranges::find(sections_, name, &property_section::name);
        return it != sections_.end() ? *it : sections_.emplace_back(property_section{name, {}});
    }

    std::vector<property_section> sections_;
};

}  // namespace

std::vector<property_section> track_properties(const core::service_registry& services, metadb_handle_list_cref tracks) {
    section_collector collector;
    services.for_each<track_property_provider>(
        [&](track_property_provider& provider) { provider.enumerate_groups(tracks, collector, collector); },
        "the track properties");
    return collector.finish();
}

}  // namespace ostrevan::view
