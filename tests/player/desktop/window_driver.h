// A person before the real window: real clicks and keys on a real profile.
#pragma once

#include <QAbstractButton>
#include <QApplication>
#include <QFileDialog>
#include <QHeaderView>
#include <QLineEdit>
#include <QMenu>
#include <QMenuBar>
#include <QTest>
#include <clocale>
#include <filesystem>
#include <optional>

#include "player/core/profile_folder.h"
#include "player/desktop/application.h"
#include "player/desktop/track_table.h"

namespace ostrevan {

class window_driver {
public:
    explicit window_driver(std::string profile) : profile_(std::move(profile)) { start(); }

    void start() {
        core::prepare_profile(profile_);
        running_.emplace(
            desktop::window_options{.profile = profile_, .components = COMPONENTS, .audio = playback::audio_output::null},
            *core::profile_lock::take(profile_));
    }
    void close() { running_.reset(); }
    desktop::application& running() { return *running_; }
    desktop::main_window& window() { return running_->window(); }
    desktop::track_table& table() { return *dynamic_cast<desktop::track_table*>(window().findChild<QTableView*>()); }

    /// What is visible, of a kind, with this name, label or text; null when there is none.
    template <typename Widget>
    static Widget* visible(const QString& name = {}) {
        for (auto* const each : QApplication::allWidgets()) {
            auto* const found = dynamic_cast<Widget*>(each);
            if (found == nullptr || !found->isVisible()) continue;
            const auto label = each->property("text").toString().remove(QLatin1Char('&'));
            if (name.isEmpty() || label == name || each->accessibleName() == name || each->windowTitle() == name)
                return found;
        }
        return nullptr;
    }
    template <typename Done>
    static bool wait(Done done) {
        return QTest::qWaitFor(done, 20000);
    }
    /// Clicks what has this name, as soon as it is there.
    static bool click(const QString& name) {
        const bool is_there = wait([&] { return visible<QAbstractButton>(name) != nullptr; });
        // Beside its beginning: what follows the text of a check box is no part of it.
        if (auto* const button = is_there ? visible<QAbstractButton>(name) : nullptr)
            QTest::mouseClick(button, Qt::LeftButton, {}, QPoint(8, button->height() / 2));
        return is_there;
    }
    static bool name_file(const std::string& path) {
        if (!wait([] { return visible<QFileDialog>() != nullptr; })) return false;
        auto* const box = visible<QFileDialog>();
        auto* const line = box->findChild<QLineEdit*>();
        line->setText(QString::fromStdString(path));  // without the list of names that typing opens
        QTest::keyClick(line, Qt::Key_Return);
        return true;
    }
    QPoint middle_of(int row, const QString& column) { return table().visualRect(cell(row, column)).center(); }
    QString text(int row, const QString& column) {
        wait([&] { return !table().model()->data(cell(row, QStringLiteral("Path"))).toString().isEmpty(); });
        return table().model()->data(cell(row, column)).toString();
    }
    int rows() { return visible<desktop::track_table>() == nullptr ? 0 : table().model()->rowCount(); }
    void click_row(int row, Qt::KeyboardModifiers keys = {}) {
        QTest::mouseClick(table().viewport(), Qt::LeftButton, keys, middle_of(row, QStringLiteral("Title")));
    }
    void click_heading(const QString& column) {
        auto& head = *table().horizontalHeader();
        const int section = cell(0, column).column();
        QTest::mouseClick(head.viewport(), Qt::LeftButton, {},
                          QPoint(head.sectionViewportPosition(section) + head.sectionSize(section) / 3, head.height() / 2));
    }
    /// Opens a menu of the window, or else the context menu, and chooses the entries of a path.
    bool choose(QMenu& menu, const QStringList& path) {
        auto* level = &menu;
        for (const auto& name : path) {
            QAction* found = nullptr;
            for (auto* const each : level->actions())
                if (each->text().remove(QLatin1Char('&')) == name) found = each;
            if (found == nullptr || !found->isEnabled()) return false;
            if (found->menu() == nullptr) {
                QTest::mouseClick(level, Qt::LeftButton, {}, level->actionGeometry(found).center());
                return true;
            }
            QTest::mouseClick(level, Qt::LeftButton, {}, level->actionGeometry(found).center());
            if (!wait([&] { return found->menu()->isVisible(); })) return false;
            level = found->menu();
        }
        return false;
    }
    QMenu* open_menu(const QString& name) {
        auto& bar = *window().menuBar();
        for (auto* const each : bar.actions())
            if (each->text().remove(QLatin1Char('&')) == name) {
                QTest::mouseClick(&bar, Qt::LeftButton, {}, bar.actionGeometry(each).center());
                return wait([&] { return each->menu()->isVisible(); }) ? each->menu() : nullptr;
            }
        return nullptr;
    }
    QMenu* open_track_menu(int row) {
        QTest::mouseClick(table().viewport(), Qt::RightButton, {}, middle_of(row, QStringLiteral("Title")));
        QContextMenuEvent event(QContextMenuEvent::Mouse, middle_of(row, QStringLiteral("Title")),
                                table().viewport()->mapToGlobal(middle_of(row, QStringLiteral("Title"))));
        QApplication::sendEvent(table().viewport(), &event);
        return wait([] { return visible<QMenu>() != nullptr; }) ? visible<QMenu>() : nullptr;
    }

private:
    QModelIndex cell(int row, const QString& column) {
        auto& model = *table().model();
        for (int i = 0; i < model.columnCount(); ++i)
            if (model.headerData(i, Qt::Horizontal).toString() == column) return model.index(row, i);
        return {};
    }

    const std::string profile_;
    std::optional<desktop::application> running_;
};

/// One for the process, as in the program. It is never destroyed.
inline QApplication& program() {
    static int count = 1;
    static char name[] = "ostrevan-desktop";
    static char* words[] = {name, nullptr};
    static auto& made = *new QApplication(count, words);
    std::setlocale(LC_NUMERIC, "C");
    return made;
}

}  // namespace ostrevan
