#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace ostrevan::library {

/// Selects supported audio and CUE sheets by extension. Called for every directory entry, so it compares an extension as
/// one number.
class name_filter {
public:
    name_filter();

    [[nodiscard]] bool is_wanted(std::string_view name) const noexcept;

private:
    std::vector<std::uint64_t> extensions_;
};

}  // namespace ostrevan::library
