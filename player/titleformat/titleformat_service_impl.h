#pragma once

#include "ostrevan/titleformat.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::titleformat {

/// The formatting language for components.
class titleformat_service_impl : public titleformat_service {
public:
    explicit titleformat_service_impl(const component_fields& published) : published_(published) {}
    [[nodiscard]] std::string format(metadb_handle& track, const char* text) const override {
        return compile(text).run(track_fields(published_, track)).text;
    }

private:
    const component_fields& published_;
};

}  // namespace ostrevan::titleformat
