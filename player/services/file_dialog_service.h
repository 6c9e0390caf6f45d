#pragma once

#include <optional>
#include <string>

#include "ostrevan/file_dialog.h"
#include "player/view/front_end.h"

namespace ostrevan::services {

/// Asks for files. A name for saving gets the default extension; replacing a file needs a confirmation.
class file_dialog_service_impl : public file_dialog_service {
public:
    file_dialog_service_impl(view::front_end& ui) : ui_(ui) {}
    std::optional<std::string> ask(const query_t& query) override;

private:
    view::front_end& ui_;
};

}  // namespace ostrevan::services
