#pragma once

#include "ostrevan/hash_service.h"
#include "ostrevan/text_helpers.h"

namespace support {

/// MD5 and Unicode lower-casing. They live until the process ends: the component keeps references and table pointers.
ostrevan::hash_service& md5_hash();
ostrevan::text_helper_service& text_helper();

/// The implementation of the system or of a library.
ostrevan::hash_digest md5_of(const void* bytes, std::size_t size);
std::uint32_t lower_case_of(std::uint32_t code_point) noexcept;

}  // namespace support
