#pragma once

#include <QWidget>
#include <cstddef>
#include <string>

#include "player/core/job.h"
#include "player/view/track_listing.h"

namespace ostrevan::desktop {

/// The parts of a window that show what the player says. [main-thread]
class shown_parts {
public:
    virtual ~shown_parts() = default;
    virtual void add_line(const std::string& line) = 0;
    /// The next line is about a failure.
    virtual void expect_failure() = 0;
    virtual void show_listing(const view::track_listing& listing) = 0;
    /// `of` may be null. `total` is 0 while unknown.
    virtual void show_progress(const core::job_ptr& of, const std::string& what, std::size_t done, std::size_t total) = 0;
    virtual void end_progress(const core::job_ptr& of) = 0;
    /// Owns the questions.
    virtual QWidget& window() = 0;

protected:
    shown_parts() = default;
    shown_parts(const shown_parts&) = default;
    shown_parts& operator=(const shown_parts&) = default;
};

}  // namespace ostrevan::desktop
