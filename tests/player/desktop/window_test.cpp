// The window as its user sees it: the real application, with clicks and keys, on a real profile and real files.
#include <gtest/gtest.h>

#include <QDialog>
#include <QMessageBox>
#include <QProcess>
#include <QTimer>

#include "player/desktop/hand_over.h"
#include "tests/player/desktop/window_driver.h"
#include "tests/player/temporary_folder.h"

namespace ostrevan {
namespace {

QString words(const char* text) { return QString::fromUtf8(text); }

class window : public temporary_folder {
protected:
    window() {
        program();
        user_.emplace(folder_ + "/profile");
        if (std::getenv("MUSIC") != nullptr) music_ = std::getenv("MUSIC");
    }
    /// As on the first day.
    void add_music() {
        ASSERT_TRUE(user_->click(words("Add a music folder...")));
        ASSERT_TRUE(user_->name_file(music_));
        ASSERT_TRUE(user_->wait([&] { return user_->rows() == tracks; })) << user_->rows();
    }
    std::string shown(const char* column, int row = 0) { return user_->text(row, words(column)).toStdString(); }
    bool comes_to_show(const char* column, const std::string& text, int row = 0) {
        return user_->wait([&] { return shown(column, row) == text; });
    }
    int find(const char* text) {
        auto* const line = window_driver::visible<QLineEdit>(words("Find"));
        line->clear();
        QTest::keyClicks(line, words(text));
        return user_->wait([&] { return user_->rows() < tracks; }) ? user_->rows() : -1;
    }

    static constexpr int tracks = 8;
    std::string music_;
    std::optional<window_driver> user_;
};

TEST_F(window, adds_a_folder_then_finds_and_sorts_by_values_and_keeps_the_layout) {
    add_music();
    EXPECT_EQ(find("ferry"), 1);
    EXPECT_EQ(shown("Title"), "First Ferry");
    auto* const line = window_driver::visible<QLineEdit>(words("Find"));
    line->clear();
    ASSERT_TRUE(user_->wait([&] { return user_->rows() == tracks; }));
    user_->click_heading(words("Title"));
    EXPECT_TRUE(comes_to_show("Title", "First Ferry"));
    user_->click_heading(words("Title"));
    EXPECT_TRUE(comes_to_show("Title", "Trois cuillères"));
    user_->table().horizontalHeader()->moveSection(0, 1);
    user_->close();
    user_->start();
    EXPECT_TRUE(comes_to_show("Title", "Trois cuillères")) << "the order is kept";
    EXPECT_EQ(user_->table().horizontalHeader()->visualIndex(0), 1) << "and so is the place of a column";
}

TEST_F(window, plays_from_the_row_that_is_double_clicked) {
    add_music();
    const auto second = shown("Title", 1);
    QTest::mouseClick(user_->table().viewport(), Qt::LeftButton, {}, user_->middle_of(1, words("Title")));
    QTest::mouseDClick(user_->table().viewport(), Qt::LeftButton, {}, user_->middle_of(1, words("Title")));
    EXPECT_TRUE(user_->wait([&] { return user_->window().windowTitle().startsWith(words(second.c_str())); }));
}

TEST_F(window, rates_by_a_click_on_a_star_and_by_the_menu_and_asks_without_blocking) {
    add_music();
    auto& cells = user_->table();
    const auto place = user_->middle_of(2, words("Rating"));
    const int letter = cells.fontMetrics().horizontalAdvance(words("\u2605"));
    const auto cell = cells.visualRect(cells.indexAt(place));
    const auto click_star = [&](int star) {
        QTest::mouseClick(cells.viewport(), Qt::LeftButton, {},
                          QPoint(cell.left() + 2 + letter * star - letter / 2, place.y()));
    };
    click_star(4);
    EXPECT_TRUE(comes_to_show("Rating", "\u2605\u2605\u2605\u2605\u2606", 2));
    QTest::qWait(QApplication::doubleClickInterval());
    click_star(1);
    EXPECT_TRUE(comes_to_show("Rating", "\u2605\u2606\u2606\u2606\u2606", 2));
    ASSERT_TRUE(user_->choose(*user_->open_track_menu(2), {words("Playback Statistics"), words("Rating"), words("5")}));
    EXPECT_TRUE(comes_to_show("Rating", "\u2605\u2605\u2605\u2605\u2605", 2));
    const auto others = shown("Rating", 1);
    EXPECT_EQ(others, "") << "the others stay";

    ASSERT_TRUE(user_->choose(*user_->open_track_menu(2), {words("Playback Statistics"), words("Reset statistics")}));
    ASSERT_TRUE(user_->wait([] { return window_driver::visible<QMessageBox>() != nullptr; }));
    EXPECT_EQ(find("lantern"), 4) << "while the question is open";
    EXPECT_TRUE(user_->click(words("OK")));
    window_driver::visible<QLineEdit>(words("Find"))->clear();
    EXPECT_TRUE(comes_to_show("Rating", "", 2));
}

TEST_F(window, carries_out_the_commands_of_other_processes_and_takes_over_from_one_that_serves) {
    add_music();
    const auto profile = QString::fromStdString(folder_ + "/profile");
    const auto command = [&](QProcess& process, const QString& name) {
        process.start(words(OSTREVAN), {words("--profile"), profile, name});
        return process.waitForStarted();
    };
    QProcess list, serve;
    ASSERT_TRUE(command(list, words("list")));
    ASSERT_TRUE(user_->wait([&] { return list.state() == QProcess::NotRunning; }));
    EXPECT_EQ(list.readAllStandardOutput().count('\n'), 2 + tracks) << list.readAllStandardError().toStdString();

    user_->close();
    ASSERT_TRUE(command(serve, words("serve")));
    ASSERT_TRUE(user_->wait([&] { return !core::profile_lock::take(folder_ + "/profile").has_value(); }));
    QTimer::singleShot(0, [] { window_driver::click(words("Yes")); });
    EXPECT_TRUE(desktop::take_profile(folder_ + "/profile").has_value());
    EXPECT_TRUE(user_->wait([&] { return serve.state() == QProcess::NotRunning; }));
    EXPECT_EQ(serve.exitCode(), 0);
}

}  // namespace
}  // namespace ostrevan
