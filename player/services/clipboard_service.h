#pragma once

#include <string>
#include <utility>

#include "ostrevan/clipboard.h"

namespace ostrevan::services {

/// The clipboard as one file that only its user can read, so that it outlives the process and serves where there is no
/// display: in `$XDG_RUNTIME_DIR`, or in the temporary folder under the user's number. Layout: length of the format name (32
/// bits, little-endian), the name, the bytes.
class clipboard_service_impl : public clipboard_service {
public:
    clipboard_service_impl() : clipboard_service_impl(default_folder()) {}
    /// The folder is made, for its user alone, when something is copied.
    explicit clipboard_service_impl(std::string folder) : folder_(std::move(folder)) {}

    [[nodiscard]] bool has_format(const char* format) const override;
    bool get(const char* format, std::vector<std::uint8_t>& bytes) const override;
    void set(const char* format, std::span<const std::uint8_t> bytes) override;

private:
    static std::string default_folder();
    [[nodiscard]] std::string file_path() const { return folder_ + "/clipboard"; }

    const std::string folder_;
};

}  // namespace ostrevan::services
