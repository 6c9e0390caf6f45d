#pragma once

#include <cstddef>
#include <functional>
#include <utility>

#include "ostrevan/field_provider.h"

namespace ostrevan::services {

/// The player's own field `skip_count`: how often the listener left the track in its first half.
class skip_count_field_impl : public field_provider {
public:
    using counter = std::function<std::size_t(const metadb_handle& track)>;

    /// `skips_of` may be called on any thread.
    explicit skip_count_field_impl(counter skips_of) : skips_of_(std::move(skips_of)) {}

    [[nodiscard]] std::size_t get_field_count() const noexcept override { return 1; }
    [[nodiscard]] const char* get_field_name(std::size_t /*index*/) const override { return "skip_count"; }
    bool process_field(std::size_t /*index*/, metadb_handle* track, titleformat_text_out& out) override {
        const auto count = track == nullptr ? 0 : skips_of_(*track);
        out.write_int(nuv::guid{}, count);
        return count != 0;
    }

private:
    const counter skips_of_;
};

}  // namespace ostrevan::services
