// Takes pictures of the window at work: pictures MUSIC FOLDER light|dark
#include <QPalette>
#include <QScreen>
#include <QStyleFactory>
#include <iostream>

#include "tests/player/desktop/window_driver.h"

namespace ostrevan {
namespace {

void use_dark_palette() {
    QPalette dark(QColor(53, 53, 53));
    dark.setColor(QPalette::Base, QColor(35, 35, 35));
    dark.setColor(QPalette::AlternateBase, QColor(45, 45, 45));
    dark.setColor(QPalette::Highlight, QColor(42, 130, 218));
    QApplication::setPalette(dark);
}

struct album {
    std::string folder, prefix;
    void add(const char* name) const {
        QTest::qWait(300);  // until everything is drawn
        const auto file = QString::fromStdString(folder + "/" + prefix + "-" + name + ".png");
        if (!QGuiApplication::primaryScreen()->grabWindow(0).save(file)) throw std::runtime_error(file.toStdString());
        std::cout << file.toStdString() << '\n';
    }
};

bool all_steps(const std::string& music, const album& pictures) {
    const auto profile = pictures.folder + "/" + pictures.prefix + "-profile";
    std::filesystem::remove_all(profile);
    window_driver user(profile);
    user.window().showMaximized();
    user.window().setGeometry(QGuiApplication::primaryScreen()->geometry());
    const auto step = [](bool is_done, const char* what) {
        if (!is_done) std::cerr << "pictures: cannot " << what << '\n';
        return is_done;
    };
    pictures.add("first-start");
    if (!step(user.click(QStringLiteral("Add a music folder...")), "add a folder")) return false;
    user.wait([] { return window_driver::visible<QFileDialog>() != nullptr; });
    pictures.add("choose-folder");
    user.name_file(music);
    if (!step(user.wait([&] { return user.rows() > 4; }), "fill the list")) return false;
    user.click_row(2);
    pictures.add("list");
    QTest::qWait(600);  // or it would count as a double click already
    user.click_row(1);
    QTest::mouseDClick(user.table().viewport(), Qt::LeftButton, {}, user.middle_of(1, QStringLiteral("Title")));
    step(user.wait([&] { return user.window().windowTitle() != QStringLiteral("ostrevan"); }), "play");
    QTest::qWait(1500);
    pictures.add("playing");
    if (auto* const menu = user.open_track_menu(2)) {
        pictures.add("track-menu");
        menu->close();
    }
    if (auto* const menu = user.open_menu(QStringLiteral("Library"))) {
        pictures.add("library-menu");
        step(user.choose(*menu, {QStringLiteral("Playback Statistics"), QStringLiteral("Export statistics...")}), "export");
        pictures.add("export-dialog");
        if (auto* const box = window_driver::visible<QDialog>()) box->reject();
    }
    if (auto* const menu = user.open_track_menu(2)) {
        step(user.choose(*menu, {QStringLiteral("Playback Statistics"), QStringLiteral("Rating"), QStringLiteral("4")}),
             "rate");
        QTest::qWait(500);
    }
    if (auto* const menu = user.open_track_menu(2)) {
        step(user.choose(*menu, {QStringLiteral("Playback Statistics"), QStringLiteral("Reset statistics")}), "reset");
        user.wait([] { return window_driver::visible<QDialog>() != nullptr; });
        pictures.add("question");
        if (auto* const box = window_driver::visible<QDialog>()) box->reject();
    }
    QTest::keyClicks(window_driver::visible<QLineEdit>(QStringLiteral("Find")), QStringLiteral("%nonsense% IS 3"));
    pictures.add("mistake");
    return true;
}

}  // namespace
}  // namespace ostrevan

int main(int count, char** words) {
    if (count != 4) return 2;
    ostrevan::program();
    QApplication::setStyle(QStyleFactory::create(QStringLiteral("Fusion")));
    const std::string look = words[3];
    if (look == "dark") ostrevan::use_dark_palette();
    const auto percent = std::to_string(static_cast<int>(ostrevan::program().devicePixelRatio() * 100));
    return ostrevan::all_steps(words[1], {words[2], look + "-" + percent}) ? 0 : 1;
}
