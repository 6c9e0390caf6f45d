#include <QLabel>
#include <QMessageBox>
#include <QTimer>

#include "tests/player/desktop/window_driver.h"
#include "tests/player/front_end_suite.h"

namespace ostrevan {
namespace {

struct user_at_a_window final : user, desktop::shown_parts {
    const answers given;
    QApplication& application = program();
    QWidget place;
    std::string said;
    desktop::window_front_end front_end{*this};

    user_at_a_window(const core::job_ptr& /*job*/, const answers& wanted) : given(wanted) {}

    void add_line(const std::string& line) override { said += line + "\n"; }
    void expect_failure() override {}
    void show_listing(const view::track_listing&) override {}
    void show_progress(const core::job_ptr&, const std::string&, std::size_t, std::size_t) override {}
    void end_progress(const core::job_ptr&) override {}
    QWidget& window() override { return place; }

    view::front_end& ui() override { return front_end; }
    std::string shown() override { return said; }
    void answer_question() override {
        QTimer::singleShot(0, &place, [this] {
            auto* const box = window_driver::visible<QMessageBox>();
            if (box == nullptr) return;
            said += (box->windowTitle() + QStringLiteral(": ") + box->text()).toStdString();
            QTest::mouseClick(box->button(given.yes ? QMessageBox::Yes : QMessageBox::No), Qt::LeftButton);
        });
    }
    void answer_file() override {
        QTimer::singleShot(0, &place, [this] {
            if (given.file.empty()) return QTest::keyClick(window_driver::visible<QFileDialog>(), Qt::Key_Escape);
            std::filesystem::create_directory(std::filesystem::path(given.file).parent_path());
            std::ofstream(given.file) << "here";
            window_driver::name_file(std::filesystem::absolute(given.file));
            std::filesystem::remove_all(std::filesystem::path(given.file).parent_path());
        });
    }
    void answer_dialog() override {
        QTimer::singleShot(0, &place, [this] {
            if (window_driver::visible<QDialog>() == nullptr) return;
            window_driver::click(QStringLiteral("Two"));
            window_driver::click(given.yes ? QStringLiteral("OK") : QStringLiteral("Cancel"));
        });
    }
    void run(core::main_loop& loop, const std::atomic<bool>& is_done) override {
        {
            const desktop::loop_bridge bridge(loop);
            EXPECT_TRUE(window_driver::wait([&] { return is_done.load(); }));
            QApplication::processEvents();
        }
        loop.run_until_idle();
    }
};

}  // namespace

const std::map<std::string, make_user> users{{"window", a_user<user_at_a_window>}};
INSTANTIATE_TEST_SUITE_P(users, front_ends, testing::Values("window"), [](const auto& of) { return of.param; });

}  // namespace ostrevan
