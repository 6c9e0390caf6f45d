// The window as its user sees it: the real application, with clicks and keys, on a real profile and real files.
#include <gtest/gtest.h>

#include <QDialog>
#include <QMessageBox>
#include <QSlider>
#include <QToolButton>

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

}  // namespace
}  // namespace ostrevan
