#pragma once

#include <cstddef>

#include "ostrevan/exceptions.h"
#include "ostrevan/service.h"

namespace ostrevan {

/// Shows the progress of long work on the main thread, until it is released. [main-thread]
class progress_display : public service_base {
public:
    /// `total` 0: not known yet. Cheap to call often.
    virtual void set(std::size_t done, std::size_t total) = 0;
    /// Whether the user wants the work to stop.
    [[nodiscard]] virtual bool is_aborting() const noexcept = 0;
};
using progress_display_ptr = service_ptr_t<progress_display>;

class progress_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{47B2E6A1-8D0C-4B7F-9C5E-1E2D3F4A5B60}");

    /// `what` names the things counted: "records exported". [main-thread]
    [[nodiscard]] virtual progress_display_ptr start(const char* what) = 0;
};

/// Progress that also works in a player without a display for it. Throws `exception_aborted` when the user wants the work to
/// stop. [main-thread]
class progress_scope {
public:
    explicit progress_scope(const char* what);
    /// Looks at the player in one of 256 calls.
    void step(std::size_t done, std::size_t total) {
        if (++calls_ % calls_between_looks == 0) look(done, total);
    }
    /// Looks at the player now, for work with few and long steps.
    void look(std::size_t done, std::size_t total);

private:
    static constexpr unsigned calls_between_looks = 256;

    progress_display_ptr display_;
    unsigned calls_ = 0;
};

}  // namespace ostrevan
