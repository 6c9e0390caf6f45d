#include "quorvel/interchange/import_run.h"

#include <exception>
#include <string>

#include "ostrevan/core_api.h"
#include "ostrevan/exceptions.h"
#include "quorvel/common/console_line.h"
#include "quorvel/common/questions.h"
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

void report_import_failure(const std::string& reason) { report_failure("Playback statistics import failure: " + reason); }

void import_file(std::string_view text, std::uint32_t fields) {
    ostrevan::core_api::ensure_main_thread();
    try {
        StatsOp op;
        ParseGlobals globals(op, fields);
        try {
            attempt([&] { XMLParser_Root(globals).parse({}, text.data(), text.size()); });
            attempt([&] { apply_old_edits(globals); });
            attempt([&] { apply_pending_items(globals); });
        } catch (const ostrevan::exception_aborted&) {
            const auto changed = op.has_taken_effect() ? op.changed_keys().size() : 0;
            report_import_failure(changed == 0 ? "Interrupted. No statistics have been changed"
                                               : "Interrupted after " + std::to_string(changed) + " records were changed");
            if (changed == 0) return;
        }
        op.finish();
        print_to_console("Playback statistics import: records read: " + std::to_string(globals.records) +
                         ", statistics changed: " + std::to_string(op.changed_keys().size()));
    } catch (const std::exception& e) {
        report_import_failure(e.what());
    }
}

}  // namespace quorvel
