#include <iostream>

#include "player/core/component_loader.h"
#include "player/terminal/command.h"
#include "player/terminal/table.h"

namespace ostrevan::terminal {
namespace {

void print_components(run_context& context) {
    table out({{"Name"}, {"Version"}, {"File"}});
    for (const auto& component : context.player.components) {
        const auto* const version = core::version_of(component);
        out.add_row(
            {version != nullptr ? version->name() : "", version != nullptr ? version->version() : "", component.path});
    }
    std::cout << out.text(0);
}

const command_file components_command(140, [](command_declarations& declare) {
    declare.run(declare.add("components", "The loaded components: name, version, file"), print_components);
});

}  // namespace
}  // namespace ostrevan::terminal
