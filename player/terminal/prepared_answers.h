#pragma once

#include <optional>
#include <string>
#include <vector>

namespace ostrevan::terminal {

/// Answers from the command line.
struct prepared_answers {
    /// For every question, and OK or Cancel in every dialog.
    std::optional<bool> yes;
    std::optional<std::string> file;
    /// Labels, or parts of them, for the first dialog that opens.
    std::vector<std::string> check;
    std::vector<std::string> uncheck;

    /// Whether any answer is for dialogs only.
    [[nodiscard]] bool fill_dialogs() const noexcept { return file || !check.empty() || !uncheck.empty(); }
};

}  // namespace ostrevan::terminal
