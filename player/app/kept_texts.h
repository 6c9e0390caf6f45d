#pragma once

#include <map>
#include <string>

#include "player/core/latest_work.h"

namespace ostrevan::app {

/// Texts by name that a front end keeps for its next start, such as the columns of a list; one JSON object in a file.
/// [main-thread]
class kept_texts {
public:
    /// A file that cannot be read counts as empty; it is replaced at the first change.
    kept_texts(core::main_loop& loop, std::string path);

    /// Empty when there is none.
    [[nodiscard]] std::string get(const std::string& name) const;
    /// Saved on another thread.
    void set(const std::string& name, std::string text);

private:
    const std::string path_;
    std::map<std::string, std::string> texts_;
    core::latest_work saving_;
};

}  // namespace ostrevan::app
