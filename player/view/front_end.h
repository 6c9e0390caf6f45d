#pragma once

#include <cstddef>
#include <optional>
#include <string>

#include "ostrevan/file_dialog.h"
#include "ostrevan/popup.h"
#include "player/view/open_dialog.h"
#include "player/view/track_listing.h"

namespace ostrevan::view {

/// What the rest of the player asks of a front end. [main-thread] unless said otherwise.
class front_end {
public:
    virtual ~front_end() = default;

    /// Prints a line on the console. [any-thread]
    virtual void print_line(const std::string& line) = 0;

    /// A message that needs no answer.
    virtual void show_message(const std::string& text, const std::string& title, popup_message::icon_t icon) = 0;
    /// Asks and returns one of the answers of `popup_message_v3`.
    virtual unsigned ask(const popup_message_v3::query_t& query) = 0;

    /// Shows a dialog and processes one step of the user. Called again with the next `turn`, counted from 0, while the
    /// dialog is open; work posted meanwhile has run.
    virtual void show_dialog(open_dialog& dialog, unsigned turn) = 0;
    /// The path as typed by the user; empty on cancel.
    virtual std::optional<std::string> ask_file(const file_dialog_service::query_t& query) = 0;

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
