#pragma once

#include <cstdint>
#include <string>

#include "ostrevan/service.h"

namespace ostrevan {

/// The service that the functions below use. [any-thread]
class text_helper_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{409FE609-66B4-47AB-BD50-443DBD76D442}");

    /// Unicode simple lower-casing of one code point.
    [[nodiscard]] virtual std::uint32_t lower(std::uint32_t code_point) const noexcept = 0;
    /// For code points below `lower_table_size`, `lower` as a table, which lives until the process ends.
    [[nodiscard]] virtual const std::uint16_t* lower_table() const noexcept = 0;
    static constexpr std::uint32_t lower_table_size = 0x3000;
};

/// The player's lower-casing for code points outside ASCII. Returns the code point itself before the handshake.
std::uint32_t lower_beyond_ascii(std::uint32_t code_point) noexcept;

/// Lower-cases one character by the player's table, ASCII without asking the player. [any-thread]
inline std::uint32_t uCharLower(std::uint32_t code_point) noexcept {
    if (code_point < 0x80) return code_point - 'A' < 26U ? code_point + ('a' - 'A') : code_point;
    return lower_beyond_ascii(code_point);
}

/// Writes a line into the crash log of the player. [any-thread]
void uPrintCrashInfo_OnEvent(const char* line) noexcept;

/// The operating system's text for an error number, without a final line feed. [any-thread]
std::string uFormatSystemErrorMessage(int error);

}  // namespace ostrevan
