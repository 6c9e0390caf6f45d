#include <array>

#include "nuv/text.h"
#include "player/titleformat/function.h"

namespace ostrevan::titleformat {

const function* find_function(std::string_view name) noexcept {
    for (const auto group : std::array{logic_functions(), number_functions(), text_functions(), part_functions()})
        for (const function& item : group)
            if (nuv::equal_ascii_nocase(item.name, name)) return &item;
    return nullptr;
}

}  // namespace ostrevan::titleformat
