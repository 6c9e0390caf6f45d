#pragma once

#include <functional>
#include <string>

#include "ostrevan/service.h"

namespace ostrevan {

/// Messages that need no answer. [main-thread]
class popup_message : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{D5CAC75A-3023-4DCE-8B0D-B502BD056A7C}");

    enum icon_t : unsigned { icon_information = 0, icon_error = 1, icon_query = 2 };

    virtual void show(const char* text, const char* title, icon_t icon = icon_information) = 0;
};

/// Questions, asked without waiting. Found by `service_query` on the popup message service. [main-thread]
class popup_message_v3 : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{D6172278-020C-4839-80E3-E5BF655B5488}");

    /// Message-box styles: buttons, to be combined with one icon.
    static constexpr unsigned style_ok = 0x0;
    static constexpr unsigned style_ok_cancel = 0x1;
    static constexpr unsigned style_yes_no = 0x4;
    static constexpr unsigned style_icon_error = 0x10;
    static constexpr unsigned style_icon_warning = 0x30;
    /// Answers.
    static constexpr unsigned answer_ok = 1;
    static constexpr unsigned answer_cancel = 2;
    static constexpr unsigned answer_yes = 6;
    static constexpr unsigned answer_no = 7;

    struct query_t {
        void* parent = nullptr;
        std::string text;
        std::string title;
        unsigned style = style_ok;
        /// Called once on the main thread, after `messageBoxAsync` has returned; never called when the player ends before
        /// the answer. May be empty.
        std::function<void(unsigned answer)> reply;
    };
    virtual void messageBoxAsync(query_t query) = 0;
};

}  // namespace ostrevan
