#include "player/desktop/progress_line.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QProgressBar>
#include <QStyle>
#include <QToolButton>

#include "player/desktop/qt_text.h"

namespace ostrevan::desktop {

progress_line::progress_line() {
    auto* const level = new QHBoxLayout(this);
    level->setContentsMargins(0, 0, 0, 0);
}

progress_line::row& progress_line::row_of(const core::job_ptr& job) {
    if (const auto found = rows_.find(job); found != rows_.end()) return found->second;
    auto* const whole = new QWidget(this);
    auto* const level = new QHBoxLayout(whole);
    level->setContentsMargins(0, 0, 0, 0);
    const row made{whole, new QLabel(whole), new QProgressBar(whole)};
    made.bar->setMaximumWidth(fontMetrics().averageCharWidth() * 24);
    made.bar->setAccessibleName(QStringLiteral("Progress"));
    level->addWidget(made.what);
    level->addWidget(made.bar);
    if (job) {
        auto* const stop = new QToolButton(whole);
        stop->setIcon(style()->standardIcon(QStyle::SP_BrowserStop));
        stop->setToolTip(QStringLiteral("Stop"));
        stop->setAccessibleName(QStringLiteral("Stop"));
        connect(stop, &QToolButton::clicked, this, [this, job] {
            if (on_stop) on_stop(job);
        });
        level->addWidget(stop);
    }
    layout()->addWidget(whole);
    return rows_[job] = made;
}

void progress_line::show_progress(const core::job_ptr& of, const std::string& what, std::size_t done, std::size_t total) {
    constexpr int most_letters = 40;
    // Qt counts in `int`.
    constexpr int steps = 1000;
    const auto& [whole, label, bar] = row_of(of);
    const auto text = line_of(what);
    label->setText(fontMetrics().elidedText(text, Qt::ElideMiddle, fontMetrics().averageCharWidth() * most_letters));
    label->setToolTip(text);
    bar->setRange(0, total == 0 ? 0 : steps);
    if (total != 0) bar->setValue(static_cast<int>(static_cast<double>(done) / static_cast<double>(total) * steps));
}

void progress_line::end_progress(const core::job_ptr& of) {
    const auto found = rows_.find(of);
    if (found == rows_.end()) return;
    found->second.whole->deleteLater();
    rows_.erase(found);
}

}  // namespace ostrevan::desktop
