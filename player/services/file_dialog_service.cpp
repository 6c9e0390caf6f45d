#include "player/services/file_dialog_service.h"

#include <filesystem>
#include <utility>

#include "player/core/component_call.h"
#include "player/core/main_loop.h"
#include "player/system/local_path.h"

namespace ostrevan::services {
namespace {

/// Leaves alone an existing file of that name, such as a device, and protocols other than files.
std::string with_extension(const std::string& name, const std::string& extension) {
    const std::filesystem::path path = system::local_path(name);
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    const bool is_special = std::filesystem::exists(status) && !std::filesystem::is_regular_file(status);
    if (extension.empty() || !system::is_local_path(name) || is_special || !path.has_filename() || path.has_extension())
        return name;
    return name + "." + extension;
}

}  // namespace

void file_dialog_service_impl::ask(query_t query) {
    core::check_main_thread("file_dialog_service::ask");
    const auto reply = [given = std::move(query.reply)](const std::optional<std::string>& path) {
        if (given) core::call_component(given.target_type(), [&] { given(path); });
    };
    if (query.save)
        query.reply = [this, reply, title = query.title,
                       extension = query.default_extension](const std::optional<std::string>& path) {
            if (path) confirm(with_extension(*path, extension), title, reply);
            else reply(path);
        };
    else query.reply = reply;
    ui_.ask_file(std::move(query));
}

void file_dialog_service_impl::confirm(const std::string& path, const std::string& title, const reply_t& reply) {
    std::error_code error;
    if (!system::is_local_path(path) || !std::filesystem::is_regular_file(system::local_path(path), error))
        return reply(path);
    ui_.ask({.text = path + " is there already. Replace it?",
             .title = title,
             .style = popup_message_v3::style_yes_no | popup_message_v3::style_icon_warning,
             .reply = [path, reply](unsigned answer) {
                 reply(answer == popup_message_v3::answer_yes ? std::optional(path) : std::nullopt);
             }});
}

}  // namespace ostrevan::services
