#include <algorithm>
#include <iterator>

#include "tests/support/memory_player.h"

namespace {

struct lower_pair {
    std::uint32_t from;
    std::uint32_t to;
};
/// Made by lower_pairs.py; the system's own table lacks code points of two units and a few others.
constexpr lower_pair lower_pairs[] = {
#include "lower_pairs.inc"
};

}  // namespace

std::uint32_t support::lower_case_of(std::uint32_t code_point) noexcept {
    const auto* const found = std::ranges::lower_bound(lower_pairs, code_point, {}, &lower_pair::from);
    return found != std::end(lower_pairs) && found->from == code_point ? found->to : code_point;
}
