#pragma once

#include <string>

#include "ostrevan/file_dialog.h"
#include "player/view/front_end.h"

namespace ostrevan::services {

/// Asks for files. A name for saving gets the default extension; replacing a file needs a confirmation.
class file_dialog_service_impl : public file_dialog_service {
public:
    explicit file_dialog_service_impl(view::front_end& ui) : ui_(ui) {}
    void ask(query_t query) override;

private:
    using reply_t = decltype(query_t::reply);
    void confirm(const std::string& path, const std::string& title, const reply_t& reply);

    view::front_end& ui_;
};

}  // namespace ostrevan::services
