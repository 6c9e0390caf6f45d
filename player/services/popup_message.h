#pragma once

#include "ostrevan/popup.h"
#include "player/core/main_loop.h"
#include "player/view/front_end.h"

namespace ostrevan::services {

/// Asks questions from the loop, after everything that the asking call itself says.
class popup_message_v3_impl : public popup_message_v3 {
public:
    popup_message_v3_impl(core::main_loop& loop, view::front_end& ui) : loop_(loop), ui_(ui) {}
    void messageBoxAsync(query_t query) override;

private:
    core::main_loop& loop_;
    view::front_end& ui_;
};

class popup_message_impl : public popup_message {
public:
    popup_message_impl(core::main_loop& loop, view::front_end& ui) : ui_(ui), questions_(loop, ui) {}
    void show(const char* text, const char* title, icon_t icon) override;
    service_base* service_query(const nuv::guid& interface_guid) noexcept override {
        return interface_guid == popup_message_v3::class_guid ? &questions_ : nullptr;
    }

private:
    view::front_end& ui_;
    service_uncounted_t<popup_message_v3_impl> questions_;
};

}  // namespace ostrevan::services
