#include "player/system/failure_text.h"

#include <filesystem>
#include <new>
#include <system_error>

namespace ostrevan::system {

std::string failure_text(const std::exception& failure) {
    if (const auto* const file = dynamic_cast<const std::filesystem::filesystem_error*>(&failure)) {
        const auto reason = file->code().message();
        return file->path1().empty() ? "The working folder cannot be used: " + reason + ". Change to another one."
                                     : file->path1().string() + " cannot be used: " + reason + ".";
    }
    if (dynamic_cast<const std::bad_alloc*>(&failure) != nullptr) return "There is not enough memory.";
    if (const auto* const system = dynamic_cast<const std::system_error*>(&failure)) return system->code().message() + ".";
    return failure.what();
}

}  // namespace ostrevan::system
