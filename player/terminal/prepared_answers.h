#pragma once

#include <optional>
#include <string>
#include <vector>

namespace ostrevan::terminal {

/// What the command line answers before anything is asked.
struct prepared_answers {
    /// Yes or no to every question, OK or Cancel in every dialog.
    std::optional<bool> yes;
    std::optional<std::string> file;
    /// Labels, or parts of them, to be changed in the first dialog that opens.
    std::vector<std::string> check;
    std::vector<std::string> uncheck;

    /// Whether any of them is for a dialog only.
    [[nodiscard]] bool fill_dialogs() const noexcept { return file || !check.empty() || !uncheck.empty(); }
};

}  // namespace ostrevan::terminal
