#pragma once

#include <functional>
#include <span>
#include <utility>
#include <vector>

#include "ostrevan/tag_edit.h"
#include "player/core/main_loop.h"
#include "player/core/service_registry.h"
#include "player/library/library_changes.h"

namespace ostrevan::services {

/// Reports edited tags to the components. The constructor's arguments must live until the loop is idle. [main-thread]
class tag_edit_news {
public:
    /// `before_telling` receives all edits first.
    tag_edit_news(core::main_loop& loop, const core::service_registry& services,
                  std::function<void(std::span<const tag_edit>)> before_telling)
        : loop_(loop), services_(services), before_telling_(std::move(before_telling)) {}

    void tell(const std::vector<tag_edit>& edits);
    /// Reports edits seen by the library: the first portion at once, the others as posted work. Components process each edit
    /// before they return; portions let the main loop serve others when a tool has retagged the whole library. Each portion
    /// is freed on its own, since freeing everything at once takes long too.
    void tell(std::vector<library::track_edit> seen);
    void tell(library::edit_portions portions);

    /// False when a component failed at an edit.
    [[nodiscard]] bool all_told() const noexcept { return all_told_; }

private:
    core::main_loop& loop_;
    const core::service_registry& services_;
    const std::function<void(std::span<const tag_edit>)> before_telling_;
    bool all_told_ = true;
};

}  // namespace ostrevan::services
