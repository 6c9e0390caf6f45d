#pragma once

#include "ostrevan/track.h"

namespace ostrevan {

/// The information that a decoder reads from one file. Used by one thread at a time.
class input_info_reader : public service_base {
public:
    /// Throws when the file has no such subsong or cannot be read.
    [[nodiscard]] virtual file_info get_info(std::uint32_t subsong) = 0;
};

/// The player's decoders. [any-thread]
class input_entry : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{9B1D7B5A-0E4C-4D3C-8E0B-3A6F5C2D9E71}");

    [[nodiscard]] virtual bool is_our_path(const char* path) const noexcept = 0;
    /// Throws when the file cannot be opened.
    [[nodiscard]] virtual service_ptr_t<input_info_reader> open_for_info_read(const char* path) = 0;

    /// Opens the file with the decoder that handles the path. Throws `ostrevan_io::exception_io_data` when none does.
    static service_ptr_t<input_info_reader> g_open_for_info_read(const char* path);
};

}  // namespace ostrevan
