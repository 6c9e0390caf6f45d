#pragma once

#include "ostrevan/text_helpers.h"

namespace ostrevan::services {

/// Lower-casing by utf8proc; a table made once covers the common planes.
class text_helper_service_impl : public text_helper_service {
public:
    text_helper_service_impl();
    [[nodiscard]] std::uint32_t lower(std::uint32_t code_point) const noexcept override;
    [[nodiscard]] const std::uint16_t* lower_table() const noexcept override;
};

}  // namespace ostrevan::services
