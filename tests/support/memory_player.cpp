#include "tests/support/memory_player.h"

namespace support {
namespace {

struct lower_casing : ostrevan::text_helper_service {
    lower_casing() {
        for (std::uint32_t i = 0; i < lower_table_size; ++i) table[i] = static_cast<std::uint16_t>(lower_case_of(i));
    }
    std::uint32_t lower(std::uint32_t code_point) const noexcept override { return lower_case_of(code_point); }
    const std::uint16_t* lower_table() const noexcept override { return table; }
    std::uint16_t table[lower_table_size] = {};
};

}  // namespace

memory_player::memory_player(ostrevan::get_interface_function entry, const char* library_path)
    : ostrevan_test::memory_player(entry, library_path) {
    static ostrevan::service_uncounted_t<lower_casing> all_letters;  // the component keeps references and table pointers
    offer(ostrevan::text_helper_service::class_guid, all_letters);
    offer(ostrevan::clipboard_service::class_guid, clipboard);
}

}  // namespace support
