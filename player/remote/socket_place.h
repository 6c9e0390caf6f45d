#pragma once

#include <optional>
#include <string>

#include "player/system/descriptor.h"

namespace ostrevan::remote {

/// Where the owner of a profile is reached: a socket in a folder for this user alone. Every path to the profile gives the
/// same place.
class socket_place {
public:
    /// Empty without a profile folder.
    static std::optional<socket_place> of(const std::string& profile);

    [[nodiscard]] std::string path() const { return folder_ + "/" + name_; }

    /// Listens there, and replaces a socket left behind. Only for the holder of the profile's lock. Throws with a message
    /// for the user.
    [[nodiscard]] system::descriptor listen() const;
    /// Empty when nobody listens. Throws when the folder or the listener belongs to somebody else.
    [[nodiscard]] system::descriptor connect() const;
    /// Removes the socket. Only for the one who listens.
    void remove() const noexcept;

private:
    socket_place(std::string folder, std::string name) : folder_(std::move(folder)), name_(std::move(name)) {}
    /// Empty when it does not exist.
    [[nodiscard]] system::descriptor open_folder() const;

    std::string folder_, name_;
};

/// Whether the process at the other end belongs to this user, by the kernel's word.
bool is_of_this_user(const system::descriptor& socket) noexcept;

}  // namespace ostrevan::remote
