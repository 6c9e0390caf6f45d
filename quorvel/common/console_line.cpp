#include "quorvel/common/console_line.h"

#include "ostrevan/console.h"
#include "ostrevan/core_api.h"

namespace quorvel {

void print_to_console(const std::string& line) noexcept {
    try {
        if (const auto console = ostrevan::find_service<ostrevan::console_service>()) console->print(line.c_str());
    } catch (...) {  // there is nowhere else to say it
    }
}

}  // namespace quorvel
