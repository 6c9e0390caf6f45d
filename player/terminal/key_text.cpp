#include "player/terminal/key_text.h"

namespace ostrevan::terminal {

std::string hexadecimal(std::uint64_t key) {
    constexpr char digits[] = "0123456789abcdef";
    std::string text(16, '0');
    for (auto it = text.rbegin(); it != text.rend(); ++it, key >>= 4) *it = digits[key & 15];
    return text;
}

std::string key_text(const std::vector<services::index_manager_impl::registration>& indexes, const metadb_handle& track) {
    if (indexes.empty()) return {};
    const auto key = services::index_manager_impl::key_of(indexes.front(), track);
    return key ? hexadecimal(*key) : std::string{};
}

}  // namespace ostrevan::terminal
