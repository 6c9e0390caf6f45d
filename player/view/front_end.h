#pragma once

#include <cstddef>
#include <memory>
#include <string>

#include "ostrevan/file_dialog.h"
#include "ostrevan/popup.h"
#include "player/view/open_dialog.h"
#include "player/view/track_listing.h"

namespace ostrevan::view {

/// What the rest of the player asks of a front end. No call waits for the user. [main-thread] unless said otherwise.
class front_end {
public:
    virtual ~front_end() = default;

    /// Prints a line on the console. [any-thread]
    virtual void print_line(const std::string& line) = 0;

    /// A message that needs no answer.
    virtual void show_message(const std::string& text, const std::string& title, popup_message::icon_t icon) = 0;
    /// Asks, and replies with one of the answers of `popup_message_v3`. The front end may call `query.reply` on any thread.
    virtual void ask(popup_message_v3::query_t query) = 0;
    /// Replies likewise with an absolute path.
    virtual void ask_file(file_dialog_service::query_t query) = 0;
    /// Shows a dialog until it is closed.
    virtual void show_dialog(std::shared_ptr<open_dialog> dialog) = 0;

    /// Shows a list of tracks requested by the user.
    virtual void show_listing(const track_listing& listing) = 0;

    /// Progress of long work in any unit; `total` is 0 while unknown. Cheap to call often.
    virtual void show_progress(const std::string& what, std::size_t done, std::size_t total) = 0;
    virtual void end_progress() = 0;

    virtual void beep() = 0;

    /// The user has been told of a failure: the run has failed.
    virtual void note_failure() = 0;

protected:
    front_end() = default;
    front_end(const front_end&) = default;
    front_end& operator=(const front_end&) = default;
};

}  // namespace ostrevan::view
