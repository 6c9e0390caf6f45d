// Sources: sdk/src/file_info.cpp sdk/src/file_info_builder.cpp
// Seeds: fuzz/seeds/stored_info
#include <cstdint>
#include <string_view>

#include "fuzz/check.h"
#include "ostrevan/file_info_builder.h"

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto info = ostrevan::file_info::from_bytes({reinterpret_cast<const char*>(data), size});
    if (!info) return 0;
    for (std::size_t i = 0; i < info->meta_count(); ++i)
        fuzz::check(info->meta_find(info->meta_name(i)) <= i, "every field is found");
    // NaN as a length is unlike itself.
    fuzz::check(ostrevan::file_info_builder(*info).build() == *info || info->length() != info->length(),
                "everything can be copied");
    return 0;
}
