#pragma once

#include <vector>

#include "ostrevan/dialog.h"

namespace ostrevan::services {

/// Allows one open dialog at a time.
class dialog_registry_impl : public dialog_registry {
public:
    [[nodiscard]] bool can_create_new() const noexcept override { return open_.empty(); }
    void poke_existing() override;
    void add(registered_dialog& dialog) override { open_.push_back(&dialog); }
    void forget(registered_dialog& dialog) noexcept override { std::erase(open_, &dialog); }

private:
    std::vector<registered_dialog*> open_;
};

}  // namespace ostrevan::services
