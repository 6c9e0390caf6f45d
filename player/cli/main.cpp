#include <iostream>

#include "player/cli/commands.h"
#include "player/cli/exit_status.h"
#include "player/core/failure_text.h"
#include "player/front/interrupt.h"
#include "player/query/query.h"
#include "player/titleformat/script.h"

namespace ostrevan::cli {
namespace {

int run_all(const arguments& wanted, terminal& screen) {
    front::session player({wanted.profile, wanted.components, wanted.quiet}, screen);
    run_context context{player, screen};
    try {
        std::visit([&](const auto& chosen) { run(context, chosen); }, wanted.chosen);
    } catch (...) {
        player.run_until_idle();  // what the components have begun is finished in any case
        screen.end_progress();
        throw;
    }
    player.run_until_idle();
    screen.end_progress();
    player.save();
    const int status = screen.exit_status();
    if (status == exit_done) screen.note_unused_answers();
    return status != exit_usage && front::interrupted() ? exit_failed : status;
}

int run_reporting(const arguments& wanted, terminal& screen) {
    try {
        return run_all(wanted, screen);
    } catch (const usage_error& error) {
        screen.error(error.what());
        return exit_usage;
    } catch (const query::query_error& error) {
        screen.error(error.what());
        return exit_usage;
    } catch (const titleformat::script_error& error) {
        screen.error(error.what());
        return exit_usage;
    } catch (const std::exception& error) {
        screen.error(failure_text(error));
        return exit_failed;
    }
}

}  // namespace
}  // namespace ostrevan::cli

int main(int count, char** values) {
    using namespace ostrevan::cli;
    const auto parsed = parse_arguments(count, values);
    if (const auto* status = std::get_if<int>(&parsed)) return *status;
    const auto& wanted = std::get<arguments>(parsed);
    ostrevan::front::handle_interrupts();
    terminal screen(wanted.quiet, wanted.answers);
    const int status = run_reporting(wanted, screen);
    std::cout.flush();
    return status;
}
