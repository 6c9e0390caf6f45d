#pragma once

#include <stdexcept>

namespace ostrevan::system {

/// A mistake of the user, such as an unknown column or a faulty query, and no failure of the program or of a component. The
/// text is for the user.
class user_error : public std::runtime_error {
public:
    using std::runtime_error::runtime_error;
};

}  // namespace ostrevan::system
