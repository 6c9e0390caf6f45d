#pragma once

#include <atomic>
#include <chrono>
#include <string>

namespace ostrevan::terminal {

/// What the commands that one process carries out know of each other. [any-thread]
struct ownership {
    using clock = std::chrono::steady_clock;

    /// The folder of the loaded components.
    const std::string components;
    /// Whether the own command is a lasting one.
    const bool is_lasting;
    /// Why other processes cannot have their commands carried out here; empty when they can.
    std::string obstacle{};
    const clock::time_point begin = clock::now();
    /// Whether the own command has ended.
    std::atomic<bool> is_done{false};
    /// Whether the own command is `serve`.
    std::atomic<bool> is_serving{false};
    /// Whether `quit` has asked it to end.
    std::atomic<bool> is_to_quit{false};

    /// False where a lasting command would keep the user of a short one waiting.
    [[nodiscard]] bool takes_lasting() const {
        constexpr auto short_time = std::chrono::seconds(1);
        return is_lasting || (!is_done && clock::now() - begin > short_time);
    }
};

}  // namespace ostrevan::terminal
