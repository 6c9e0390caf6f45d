#pragma once

#include <cstddef>

#include "ostrevan/exceptions.h"
#include "ostrevan/service.h"

namespace ostrevan {

/// Shows how far long work on the main thread has come, until it is released. [main-thread]
class progress_display : public service_base {
public:
    /// `total` 0: the whole is not known yet. Cheap to call often.
    virtual void set(std::size_t done, std::size_t total) = 0;
    /// Whether the user wants the work to stop.
    [[nodiscard]] virtual bool is_aborting() const noexcept = 0;
};
using progress_display_ptr = service_ptr_t<progress_display>;

class progress_service : public service_base {
public:
    static constexpr nuv::guid class_guid = nuv::guid_of("{47B2E6A1-8D0C-4B7F-9C5E-1E2D3F4A5B60}");

    /// `what` is counted: "records exported". [main-thread]
    [[nodiscard]] virtual progress_display_ptr start(const char* what) = 0;
};

/// Progress of work that may run where nobody shows any. Throws `exception_aborted` when the user wants the work to stop.
/// [main-thread]
class progress_scope {
public:
    explicit progress_scope(const char* what);
    /// Looks at the player only once in some hundred calls.
    void step(std::size_t done, std::size_t total) {
        if (++calls_ % calls_between_looks == 0) look(done, total);
    }
    /// Looks at the player now, for work that itself comes here seldom.
    void look(std::size_t done, std::size_t total);

private:
    static constexpr unsigned calls_between_looks = 256;

    progress_display_ptr display_;
    unsigned calls_ = 0;
};

}  // namespace ostrevan
