#include "player/library/folder_walk.h"

#include <algorithm>
#include <condition_variable>
#include <iterator>
#include <limits>
#include <mutex>
#include <set>
#include <system_error>
#include <utility>

#include "player/library/directory.h"

namespace ostrevan::library {
namespace {

/// The result of one worker for one directory.
struct listing {
    std::vector<found_file> files;
    std::vector<std::string> directories;
    std::vector<std::string> links;  // to directories
    std::vector<hidden_place> hidden;
    bool is_empty = true;
    bool is_partly_hidden = false;  // something in it is unreadable; already in `hidden`
};

constexpr std::size_t unknown_number = std::numeric_limits<std::size_t>::max();

bool is_still_there(const std::string& root, const file_identity& identity) noexcept {
    try {
        return status_of(root).identity == identity;
    } catch (const std::system_error&) {
        return false;
    }
}

class reader {
public:
    explicit reader(const walk_rules& rules) noexcept : rules_(rules) {}

    /// Throws std::system_error when the directory cannot be read to its end.
    listing read(directory& opened, const std::string& path, std::uint64_t device) {
        listing result;
        std::string entry_path = path == "/" ? path : path + '/';
        const std::size_t prefix = entry_path.size();
        while (const auto entry = opened.next()) {
            if (entry->name.front() == '.') continue;
            result.is_empty = false;
            entry_path.replace(prefix, entry_path.npos, entry->name);
            const bool is_file = entry->kind == entry_kind::file;
            if (entry->kind == entry_kind::other || (is_file && !rules_.is_wanted(entry->name)) ||
                rules_.is_ignored(entry_path))
                continue;
            if (entry->kind == entry_kind::directory) result.directories.push_back(entry_path);
            else look_at(opened, *entry, {entry_path, {}, device}, result);
        }
        return result;
    }

private:
    void look_at(const directory& opened, const directory::entry& entry, found_file file, listing& result) const {
        file_status status;
        try {
            status = opened.status(entry.name);
        } catch (const std::system_error& failure) {
            // A plain file that is missing was just deleted. The target of a link is unknown, and so is anything
            // unreadable.
            const bool is_missing = failure.code() == std::errc::no_such_file_or_directory;
            if (entry.kind == entry_kind::link)
                result.hidden.push_back({std::move(file.path), failure.code().message(), is_missing});
            else if (!is_missing && !result.is_partly_hidden)
                result.hidden.push_back({file.path.substr(0, file.path.rfind('/')), failure.code().message(), false});
            result.is_partly_hidden |= entry.kind != entry_kind::link && !is_missing;
            return;
        }
        file.stamp = status.stamp;
        if (status.kind == entry_kind::directory) result.links.push_back(std::move(file.path));
        else if (status.kind == entry_kind::file && rules_.is_wanted(entry.name) && rules_.is_of_interest(file))
            result.files.push_back(std::move(file));
    }

    const walk_rules& rules_;
};

class walk {
public:
    walk(const walk_rules& rules, worker_group& workers) noexcept : rules_(rules), workers_(workers) {}

    walk_result run(const std::string& root) {
        file_identity identity;
        try {
            directory opened(root);
            identity = opened.status().identity;
            visited_.insert(identity);
            auto top = reader(rules_).read(opened, root, identity.first);
            result_.is_empty = top.is_empty;
            take(std::move(top));
        } catch (const std::system_error& failure) {
            result_.root_reason = failure.code().message();
            return std::move(result_);
        }
        run_queue();
        // Everything reachable without a link comes before anything behind a link.
        while (!links_.empty() && !workers_.is_stopped()) {
            auto round = std::exchange(links_, {});
            std::ranges::sort(round);
            for (auto& link : round) {
                queue_.push_back(std::move(link));
                run_queue();
            }
        }
        result_.is_complete = !workers_.is_stopped();
        // A disk removed during the walk looks like deleted folders.
        if (!is_still_there(root, identity)) result_.root_reason = "it went away while it was read";
        return std::move(result_);
    }

private:
    /// Counts a worker as busy while the lock is released, also when it throws.
    class busy_mark {
    public:
        busy_mark(walk& owner, std::unique_lock<std::mutex>& lock) noexcept : owner_(owner), lock_(lock) {
            ++owner_.busy_;
            lock_.unlock();
        }
        ~busy_mark() {
            lock_.lock();
            --owner_.busy_;
            // This worker takes the next directory itself; wakes the others for more work, or to end.
            if (owner_.queue_.size() > 1 || owner_.busy_ == 0) owner_.changed_.notify_all();
        }
        busy_mark(const busy_mark&) = delete;
        busy_mark& operator=(const busy_mark&) = delete;

    private:
        walk& owner_;
        std::unique_lock<std::mutex>& lock_;
    };

    void run_queue() {
        if (queue_.empty()) return;
        workers_.run(
            unknown_number, [this] { work(); },
            [this] {
                std::string directory;
                {
                    const std::lock_guard guard(mutex_);
                    directory = current_;
                }
                rules_.on_progress(directory);
            });
    }

    void work() {
        reader here(rules_);
        std::unique_lock lock(mutex_);
        for (;;) {
            changed_.wait(lock, [&] { return !queue_.empty() || busy_ == 0 || workers_.is_stopped(); });
            if (queue_.empty() || workers_.is_stopped()) break;
            const std::string path = std::move(queue_.back());
            queue_.pop_back();
            current_ = path;
            const busy_mark mark(*this, lock);
            listing found = visit(here, path);
            const std::lock_guard guard(mutex_);
            take(std::move(found));
        }
        changed_.notify_all();
    }

    listing visit(reader& here, const std::string& path) {
        try {
            directory opened(path);
            const auto identity = opened.status().identity;
            {
                const std::lock_guard guard(visited_mutex_);
                if (!visited_.insert(identity).second) return {};
            }
            return here.read(opened, path, identity.first);
        } catch (const std::system_error& failure) {
            listing result;
            if (failure.code() != std::errc::no_such_file_or_directory)
                result.hidden.push_back({path, failure.code().message(), false});
            return result;
        }
    }

    void take(listing&& found) {
        const auto append = [](auto& to, auto& from) {
            to.insert(to.end(), std::make_move_iterator(from.begin()), std::make_move_iterator(from.end()));
        };
        append(result_.files, found.files);
        append(result_.hidden, found.hidden);
        append(queue_, found.directories);
        append(links_, found.links);
    }

    const walk_rules& rules_;
    worker_group& workers_;

    std::mutex mutex_;  // guards everything down to busy_
    std::condition_variable changed_;
    walk_result result_;
    std::vector<std::string> queue_;
    std::vector<std::string> links_;
    std::string current_;
    std::size_t busy_ = 0;

    std::mutex visited_mutex_;
    std::set<file_identity> visited_;
};

}  // namespace

walk_result walk_folder(const std::string& root, const walk_rules& rules, worker_group& workers) {
    return walk(rules, workers).run(root);
}

}  // namespace ostrevan::library
