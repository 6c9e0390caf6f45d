#pragma once

#include <stdexcept>
#include <string>

namespace ostrevan {

/// The index database cannot be opened, read or written. The text names the file, says what is wrong and what to do.
class index_error : public std::runtime_error {
public:
    explicit index_error(const std::string& text, bool damaged = false) : std::runtime_error(text), damaged_(damaged) {}
    /// Trying again is of no use.
    [[nodiscard]] bool damaged() const noexcept { return damaged_; }

private:
    bool damaged_;
};

}  // namespace ostrevan
