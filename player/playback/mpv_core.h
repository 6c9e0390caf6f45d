#pragma once

#include <cstdint>
#include <memory>
#include <string>

struct mpv_event;
struct mpv_handle;

namespace ostrevan::playback {

struct play_item;
struct play_options;

/// Keeps LC_NUMERIC of the process at "C" while it lives: libmpv refuses to start otherwise, and its threads parse numbers
/// as long as it runs. [main-thread]
class numeric_locale {
public:
    numeric_locale();
    ~numeric_locale();
    numeric_locale(const numeric_locale&) = delete;
    numeric_locale& operator=(const numeric_locale&) = delete;

private:
    std::string before_;
};

/// One running libmpv with the project's options, without video, configuration or scripts.
class mpv_core {
public:
    /// Throws std::runtime_error with libmpv's reason.
    explicit mpv_core(const play_options& options);

    /// Appends the item, and starts when nothing plays. Returns the id in the item's events. Throws std::runtime_error.
    std::int64_t append(const play_item& item) { return load(item, "append-play"); }
    /// Plays this item instead of the current and the appended ones. Returns and throws like `append`.
    std::int64_t replace(const play_item& item) { return load(item, "replace"); }
    void stop();
    /// Removes the entries with ids `first` to `first + count - 1`, the playing one included.
    void remove(std::int64_t first, std::int64_t count);
    /// Seconds from the start of the file.
    void seek(double position);
    void pause(bool is_paused);
    /// 0 to 100.
    void set_volume(double percent);

    /// Lets a file be loaded further, after an event of kind hook for it: it is open then, and its length is known.
    void load_further(const mpv_event& event);

    /// Ends a `wait`. [any-thread]
    void wake();
    /// The next event, or one of kind none after `seconds`. Valid until the next call.
    [[nodiscard]] const mpv_event& wait(double seconds);
    /// A negative number when the file has no such property.
    [[nodiscard]] double number(const char* property);

private:
    std::int64_t load(const play_item& item, const char* flags);

    struct terminate {
        void operator()(mpv_handle* handle) const noexcept;
    };

    numeric_locale locale_;
    std::unique_ptr<mpv_handle, terminate> handle_;
};

}  // namespace ostrevan::playback
