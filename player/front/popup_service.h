#pragma once

#include "ostrevan/clipboard.h"
#include "ostrevan/popup.h"
#include "player/core/main_loop.h"
#include "player/front/front_end.h"

namespace ostrevan::front {

/// Questions go through the loop, so that the command which asked has returned when the answer comes. An open question keeps
/// the loop from being idle.
class question_service : public popup_message_v3 {
public:
    question_service(main_loop& loop, front_end& ui) : loop_(loop), ui_(ui) {}
    void messageBoxAsync(query_t query) override;

private:
    main_loop& loop_;
    front_end& ui_;
};

class message_service : public popup_message {
public:
    message_service(main_loop& loop, front_end& ui) : loop_(loop), ui_(ui), questions_(loop, ui) {}
    void show(const char* text, const char* title, icon_t icon) override;
    service_base* service_query(const nuv::guid& interface_guid) noexcept override {
        return interface_guid == popup_message_v3::class_guid ? &questions_ : nullptr;
    }

private:
    main_loop& loop_;
    front_end& ui_;
    service_uncounted_t<question_service> questions_;
};

class beep_service_impl : public beep_service {
public:
    explicit beep_service_impl(front_end& ui) : ui_(ui) {}
    void beep() override { ui_.beep(); }

private:
    front_end& ui_;
};

}  // namespace ostrevan::front
