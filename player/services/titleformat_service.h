#pragma once

#include "ostrevan/titleformat.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::services {

/// Title formatting for components.
class titleformat_service_impl : public titleformat_service {
public:
    explicit titleformat_service_impl(const titleformat::component_fields& published) : published_(published) {}
    [[nodiscard]] std::string format(metadb_handle& track, const char* text) const override {
        return titleformat::compile(text).run(titleformat::track_fields(published_, track)).text;
    }

private:
    const titleformat::component_fields& published_;
};

}  // namespace ostrevan::services
