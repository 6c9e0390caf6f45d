#include "player/terminal/written_file.h"

#include <filesystem>
#include <stdexcept>

#include "player/system/durable_file.h"

namespace ostrevan::terminal {

bool write_asking(run_context& context, const std::string& path, std::string_view bytes, const char* title) {
    std::error_code error;
    const auto status = std::filesystem::status(path, error);
    if (!std::filesystem::exists(status)) {
        if (std::filesystem::is_symlink(std::filesystem::symlink_status(path, error)))
            throw std::runtime_error(path + " is a link to a file that is not there.");
        system::replace_file(path, bytes);
        return true;
    }
    if (!std::filesystem::is_regular_file(status)) throw std::runtime_error(path + " is not a regular file.");
    const auto answer = context.screen.ask({.text = path + " is there already. Replace it?",
                                            .title = title,
                                            .style = popup_message_v3::style_yes_no | popup_message_v3::style_icon_warning,
                                            .reply = {}});
    if (answer != popup_message_v3::answer_yes) return false;
    system::replace_file(std::filesystem::canonical(path).string(), bytes);
    return true;
}

}  // namespace ostrevan::terminal
