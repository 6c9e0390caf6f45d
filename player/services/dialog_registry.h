#pragma once

#include <vector>

#include "ostrevan/dialog.h"

namespace ostrevan::services {

/// Allows one open dialog at a time.
class dialog_registry_impl : public dialog_registry {
public:
    [[nodiscard]] bool can_create_new() const noexcept override;
    void poke_existing() override;
    void add(registered_dialog& dialog) override;
    void forget(registered_dialog& dialog) noexcept override;

private:
    std::vector<registered_dialog*> open_;
};

}  // namespace ostrevan::services
