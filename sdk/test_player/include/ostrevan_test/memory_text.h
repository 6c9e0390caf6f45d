#pragma once

#include <array>
#include <cstddef>
#include <string_view>

#include "ostrevan/hash_service.h"
#include "ostrevan/text_helpers.h"

/// What keys are made with.
namespace ostrevan_test {

/// MD5, as in the player.
class memory_hash : public ostrevan::hash_service {
public:
    ostrevan::hash_digest digest(const void* bytes, std::size_t size) override;
    ostrevan::service_ptr_t<ostrevan::hash_stream> open() override;
};

/// Lower-casing of the Latin, Greek and Cyrillic letters of European languages; other characters stay as they are. A test
/// that needs more of Unicode offers a service of its own.
class memory_letters : public ostrevan::text_helper_service {
public:
    memory_letters() noexcept;
    std::uint32_t lower(std::uint32_t code_point) const noexcept override {
        return code_point < lower_table_size ? table_[code_point] : code_point;
    }
    const std::uint16_t* lower_table() const noexcept override { return table_.data(); }

private:
    std::array<std::uint16_t, lower_table_size> table_;
};

}  // namespace ostrevan_test
