#pragma once

#include <string>
#include <utility>

#include "ostrevan/clipboard.h"
#include "player/system/runtime_folder.h"

namespace ostrevan::services {

/// The clipboard as a private file that outlives the process and works without a display. Layout: length of the format name
/// (32 bits, little-endian), the name, the bytes.
class clipboard_service_impl : public clipboard_service {
public:
    clipboard_service_impl() : clipboard_service_impl(system::runtime_folder()) {}
    /// Creates the folder, private to the user, at the first copy.
    explicit clipboard_service_impl(std::string folder) : folder_(std::move(folder)) {}

    [[nodiscard]] bool has_format(const char* format) const override;
    bool get(const char* format, std::vector<std::uint8_t>& bytes) const override;
    void set(const char* format, std::span<const std::uint8_t> bytes) override;

private:
    [[nodiscard]] std::string file_path() const { return folder_ + "/clipboard"; }

    const std::string folder_;
};

}  // namespace ostrevan::services
