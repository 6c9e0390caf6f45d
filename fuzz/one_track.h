#pragma once

#include <array>
#include <string>
#include <string_view>
#include <utility>

#include "player/titleformat/script.h"

namespace fuzz {

/// A track with a field of every kind of value.
class one_track final : public ostrevan::titleformat::field_source {
public:
    bool field(std::string_view name, std::string& out) const override {
        constexpr std::array<std::pair<std::string_view, std::string_view>, 6> fields{
            {{"title", "Trois cuillères"},
             {"artist", "Ines \xFF Valdåker"},
             {"play_count", "12"},
             {"rating", "-5"},
             {"last_played", "2026-03-28 23:59:59"},
             {"empty", ""}}};
        for (const auto& [known, value] : fields)
            if (known == name) {
                out += value;
                return true;
            }
        return false;
    }
};

}  // namespace fuzz
