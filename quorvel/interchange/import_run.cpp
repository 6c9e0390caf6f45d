#include "quorvel/interchange/import_run.h"

#include <exception>
#include <string>

#include "ostrevan/core_api.h"
#include "ostrevan/exceptions.h"
#include "ostrevan/popup.h"
#include "quorvel/common/console_line.h"
#include "quorvel/interchange/import_apply.h"
#include "quorvel/interchange/import_handlers.h"

namespace quorvel {
namespace {

/// Reports what goes wrong in one step, unless it is the user who stops it: the others then work on what there is.
template <typename Step>
void attempt(Step&& step) {
    try {
        step();
    } catch (const ostrevan::exception_aborted&) {
        throw;
    } catch (const std::exception& e) {
        report_import_failure(e.what());
    }
}

}  // namespace

void report_import_failure(const char* reason) {
    const std::string text = std::string("Playback statistics import failure: ") + reason;
    if (const auto popup = ostrevan::find_service<ostrevan::popup_message>())
        popup->show(text.c_str(), "Information", ostrevan::popup_message::icon_error);
}

void import_file(std::string_view text, std::uint32_t fields) {
    ostrevan::core_api::ensure_main_thread();
    try {
        StatsOp op;
        ParseGlobals globals(op, fields);
        attempt([&] { XMLParser_Root(globals).parse({}, text.data(), text.size()); });
        attempt([&] { apply_old_edits(globals); });
        attempt([&] { apply_pending_items(globals); });
        op.commit();
        op.publish();
        if (globals.records == 0) print_to_console("Playback statistics import: the file holds no records");
    } catch (const ostrevan::exception_aborted&) {
        report_import_failure("Interrupted; no statistics have been changed");
    } catch (const std::exception& e) {
        report_import_failure(e.what());
    }
}

}  // namespace quorvel
