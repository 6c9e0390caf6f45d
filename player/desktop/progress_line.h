#pragma once

#include <QWidget>
#include <cstddef>
#include <functional>
#include <map>
#include <string>

#include "player/core/job.h"

class QLabel;
class QProgressBar;

namespace ostrevan::desktop {

/// The progress of jobs, each with a button to stop it.
class progress_line final : public QWidget {
public:
    progress_line();

    void show_progress(const core::job_ptr& of, const std::string& what, std::size_t done, std::size_t total);
    void end_progress(const core::job_ptr& of);

    std::function<void(const core::job_ptr& of)> on_stop;

private:
    struct row {
        QWidget* whole;
        QLabel* what;
        QProgressBar* bar;
    };
    row& row_of(const core::job_ptr& job);

    std::map<core::job_ptr, row> rows_;
};

}  // namespace ostrevan::desktop
