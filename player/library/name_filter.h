#pragma once

#include <cstdint>
#include <string_view>
#include <vector>

namespace ostrevan::library {

/// Tells by the extension which names of a directory matter: supported audio and CUE sheets. Asked for every name of every
/// directory, so that an extension is compared as one number.
class name_filter {
public:
    name_filter();

    [[nodiscard]] bool is_wanted(std::string_view name) const noexcept;

private:
    std::vector<std::uint64_t> extensions_;
};

}  // namespace ostrevan::library
