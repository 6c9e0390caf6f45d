#include "player/services/file_dialog_service.h"

#include <filesystem>

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

std::optional<std::string> file_dialog_service_impl::ask(const query_t& query) {
    core::check_main_thread("file_dialog_service::ask");
    auto path = ui_.ask_file(query);
    if (!path || !query.save) return path;

    path = with_extension(*path, query.default_extension);
    std::error_code error;
    if (!system::is_local_path(*path) || !std::filesystem::is_regular_file(system::local_path(*path), error)) return path;
    const auto answer = ui_.ask({.text = *path + " is there already. Replace it?",
                                 .title = query.title,
                                 .style = popup_message_v3::style_yes_no | popup_message_v3::style_icon_warning,
                                 .reply = {}});
    return answer == popup_message_v3::answer_yes ? path : std::nullopt;
}

}  // namespace ostrevan::services
