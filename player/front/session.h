#pragma once

#include <memory>
#include <string>
#include <vector>

#include "player/core/component_loader.h"
#include "player/core/main_loop.h"
#include "player/core/service_registry.h"
#include "player/front/front_end.h"
#include "player/index/index_service.h"
#include "player/library/media_library.h"
#include "player/titleformat/track_fields.h"

namespace ostrevan::front {

struct session_options {
    std::string profile;
    std::string components;
    bool quiet = false;
};

/// One run of the player on one profile: everything it is made of, from the lock on the profile to the loaded components.
/// Made, used and destroyed on the main thread; one in a process.
class session {
public:
    /// Opens the profile and starts the components. Throws with a message for the user when the profile cannot be used;
    /// nothing in it is changed then. A component that cannot be loaded is reported to the front end and left out.
    session(const session_options& options, front_end& ui);
    /// Ends the components and closes the profile.
    ~session();
    session(const session&) = delete;
    session& operator=(const session&) = delete;

    [[nodiscard]] main_loop& loop() noexcept;
    [[nodiscard]] const service_registry& services() const noexcept;
    [[nodiscard]] library::media_library& library() noexcept;
    [[nodiscard]] library::track_table& tracks() noexcept;
    [[nodiscard]] index_service& index() noexcept;
    [[nodiscard]] const titleformat::component_fields& fields() const noexcept;
    [[nodiscard]] const std::vector<loaded_component>& components() const noexcept;

    /// Runs the loop until nothing is left to do: nothing posted, no worker, no tag update, no question open.
    void run_until_idle();
    /// Returns when everything the components have stored is on disk; throws when that cannot be had.
    void save();
    /// Throws when the profile can only be read, so that statistics could not follow an edit of tags.
    void require_writable() const;
    /// Marks the records of all tracks of the library as seen now.
    void mark_library_seen();
    /// What `index_service::drop` may drop when the user wants it.
    [[nodiscard]] std::vector<index_service::old_records> old_records() const;
    /// Every index that has ever had a record.
    [[nodiscard]] std::vector<nuv::guid> stored_indexes() const;

private:
    struct parts;
    std::unique_ptr<parts> parts_;
};

}  // namespace ostrevan::front
