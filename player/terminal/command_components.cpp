
#include "player/app/component_description.h"
#include "player/terminal/command.h"

namespace ostrevan::terminal {
namespace {

constexpr const char* components_examples =
    "Examples:\n"
    "  ostrevan components\n"
    "  ostrevan components --check build/hello/hello.dll\n"
    "A checked component is started in a player of its own, with an empty profile and an empty library.";

void print_components(run_context& context) {
    for (const auto& component : context.player.components) {
        const auto* const version = core::version_of(component);
        context.out << core::name_of(component) << (version == nullptr ? "" : std::string(" ") + version->version()) << '\n';
        const auto description =
            context.on_main([&] { return app::describe(component, context.player.index.registrations()); });
        for (const auto& [what, value] : description)
            context.out << "  " << what << std::string(11 - what.size(), ' ') << value << '\n';
    }
}

const command_file components_command(140, [](declared_command& program) {
    auto app = program.add("components", "What the loaded components offer", components_examples);
    const auto file = std::make_shared<std::optional<std::string>>();
    app.add_option("--check", file.get(), "Load this file alone and say what is wrong with it")
        .called("FILE")
        .existing_file();
    app.choose([file] { return chosen_command{print_components, false, *file}; });
});

}  // namespace
}  // namespace ostrevan::terminal
