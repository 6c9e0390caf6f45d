#include "quorvel/interchange/import_command.h"

#include <cstddef>
#include <exception>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <utility>

#include "ostrevan/core_api.h"
#include "ostrevan/dialog.h"
#include "ostrevan/exceptions.h"
#include "ostrevan/file_dialog.h"
#include "ostrevan/filesystem.h"
#include "quorvel/common/messages.h"
#include "quorvel/interchange/field_boxes.h"
#include "quorvel/interchange/import_apply.h"
#include "quorvel/platform/beep.h"
#include "quorvel/platform/dialog.h"

namespace quorvel {
namespace {

constexpr const char* import_title = "Import Playback Statistics";
constexpr field_controls import_controls = controls_for_fields("Fields to import");
constexpr ostrevan::dialog_layout import_layout{import_title, dialog_font, dialog_font_points, import_controls};

void report_import_failure(const std::string& reason) { report_failure("Playback statistics import failure: " + reason); }

template <typename Work>
void report_failures(Work&& work) {
    try {
        work();
    } catch (const std::exception& e) {
        report_import_failure(e.what());
    }
}

/// Reports the failure of one stage, so that the others work on what there is. A stop by the user ends them all.
template <typename Stage>
void attempt(Stage&& stage) {
    try {
        stage();
    } catch (const ostrevan::exception_aborted&) {
        throw;
    } catch (const std::exception& e) {
        report_import_failure(e.what());
    }
}

/// The content of a file.
struct file_content {
    std::unique_ptr<char[]> bytes;
    std::size_t size;
    [[nodiscard]] std::string_view text() const noexcept { return {bytes.get(), size}; }
};

file_content read_file(const std::string& path) {
    const auto file = ostrevan::filesystem::g_open(path.c_str(), ostrevan::filesystem::open_mode::read);
    const auto size = file->size();
    if (!size) throw ostrevan_io::exception_io_no_length(path + ": its length is not known");
    const auto bytes = static_cast<std::size_t>(*size);
    file_content content{std::make_unique_for_overwrite<char[]>(bytes), bytes};
    file->seek(0);
    file->read_exactly(content.bytes.get(), bytes);
    return content;
}

/// Asks which fields are to be imported. It holds the content of the file until it closes.
class import_dialog : public ostrevan::dialog_rules {
public:
    import_dialog(std::string path, file_content content) noexcept : path_(std::move(path)), content_(std::move(content)) {}

    const ostrevan::dialog_layout& layout() const noexcept override { return import_layout; }
    void on_open(ostrevan::dialog_window& window) override { check_all_fields(window); }
    void on_button(ostrevan::dialog_window& window, int id) override {
        if (id == ostrevan::dialog_ok) {
            const auto fields = checked_fields(window);
            if (fields == 0) return beep();
            import_file(content_.text(), fields, path_);
        }
        window.close();
    }

private:
    const std::string path_;
    file_content content_;
};

/// Another dialog may have been opened while the user chose the file.
void open_import_dialog(const std::string& path) {
    if (!ostrevan::ModalDialog_CanCreateNew()) return ostrevan::ModalDialog_PokeExisting();
    open_dialog(ostrevan::service_new<import_dialog>(path, read_file(path)));
}

}  // namespace

void import_file(std::string_view text, std::uint32_t fields, const std::string& path) {
    ostrevan::core_api::ensure_main_thread();
    try {
        StatsOp op("import of " + path);
        ParseGlobals globals{.op = op, .fields = fields};
        ImportedFile file;
        try {
            attempt([&] { XMLParser_Root(globals, file).parse({}, text.data(), text.size()); });
            attempt([&] { apply_old_edits(globals, file.old_edits); });
            attempt([&] { apply_path_items(globals, file.path_items); });
        } catch (const ostrevan::exception_aborted&) {
            const auto changed = op.has_taken_effect() ? op.changed_keys().size() : 0;
            report_import_failure(changed == 0 ? "Interrupted. No statistics have been changed"
                                               : "Interrupted after " + std::to_string(changed) + " records were changed");
            if (changed == 0) return;
        }
        op.finish();
        print_to_console("Playback statistics import: records read: " + std::to_string(file.records) +
                         ", statistics changed: " + std::to_string(op.changed_keys().size()));
    } catch (const std::exception& e) {
        report_import_failure(e.what());
    }
}

void pcdb_export::importStatistics() {
    ostrevan::core_api::ensure_main_thread();
    if (!ostrevan::ModalDialog_CanCreateNew()) return ostrevan::ModalDialog_PokeExisting();
    report_failures([] {
        ostrevan::uGetOpenFileName({.parent = ostrevan::core_api::main_window(),
                                    .filter = "XML files|*.xml",
                                    .default_extension = "xml",
                                    .title = import_title,
                                    .reply = [](const std::optional<std::string>& path) {
                                        if (path) report_failures([&] { open_import_dialog(*path); });
                                    }});
    });
}

}  // namespace quorvel
