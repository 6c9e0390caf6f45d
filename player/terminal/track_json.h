#pragma once

#include <nlohmann/json.hpp>
#include <set>
#include <string>
#include <vector>

#include "player/services/index_manager.h"
#include "player/terminal/command.h"

namespace ostrevan::terminal {

/// Makes an object in JSON of a track: its location, tags and the fields of the components.
class track_json {
public:
    explicit track_json(const run_context& context);
    nlohmann::ordered_json operator()(metadb_handle& track) const;

private:
    const titleformat::component_fields& fields_;
    const std::vector<services::index_manager_impl::registration> indexes_;
    std::set<std::string> names_;
};

nlohmann::ordered_json text_or_null(std::string text);

/// In one line; bytes that are no UTF-8 are replaced.
std::string text_of(const nlohmann::ordered_json& value);

}  // namespace ostrevan::terminal
