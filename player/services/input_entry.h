#pragma once

#include "ostrevan/input.h"

namespace ostrevan::services {

/// Reads audio files and CUE sheets on this machine, as a library scan does.
class input_entry_impl : public input_entry {
public:
    [[nodiscard]] bool is_our_path(const char* path) const noexcept override;
    [[nodiscard]] service_ptr_t<input_info_reader> open_for_info_read(const char* path) override;
};

}  // namespace ostrevan::services
