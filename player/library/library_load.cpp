#include "player/library/library_load.h"

#include <algorithm>
#include <atomic>
#include <map>
#include <memory>
#include <mutex>
#include <optional>
#include <utility>

#include "player/library/path_hash.h"
#include "player/library/worker_group.h"

namespace ostrevan::library {
namespace {

/// The ids of all files, cut into parts of equal width.
class id_parts {
public:
    explicit id_parts(const sqlite::database& in)
        : first_(as_number(in.query_integer("SELECT min(id) FROM files"))),
          span_(as_number(in.query_integer("SELECT max(id) FROM files")) - first_),
          width_(std::max(usual, span_ / most + 1)) {}

    [[nodiscard]] std::size_t count() const noexcept { return span_ / width_ + 1; }
    [[nodiscard]] std::pair<std::int64_t, std::int64_t> operator[](std::size_t which) const noexcept {
        const auto from = which * width_;
        return {static_cast<std::int64_t>(first_ + from),
                static_cast<std::int64_t>(first_ + std::min(span_, from + width_ - 1))};
    }

private:
    static constexpr std::uint64_t usual = 1024;
    static constexpr std::uint64_t most = 65'536;  // even if damaged ids are far apart
    static std::uint64_t as_number(std::int64_t integer) noexcept { return static_cast<std::uint64_t>(integer); }

    std::uint64_t first_, span_, width_;
};

/// Reads files over a connection of its own. Used by one thread.
class file_reader {
public:
    file_reader(const library_store& store, key_maker* keys)
        : keys_(keys),
          database_(store.second_connection()),
          files_(database_->prepare("SELECT id, folder, path, size, mtime, device, sound, arrived FROM files "
                                    "WHERE id BETWEEN ?1 AND ?2 ORDER BY id")),
          tracks_(database_->prepare("SELECT file, subsong, info FROM tracks WHERE file BETWEEN ?1 AND ?2 "
                                     "ORDER BY file, subsong")),
          sources_(database_->prepare("SELECT file, path, size, mtime FROM sources WHERE file BETWEEN ?1 AND ?2 "
                                      "ORDER BY file, position")) {}

    /// Steps through three tables side by side.
    loaded_files read(std::pair<std::int64_t, std::int64_t> ids) {
        for (auto* rows : {&files_, &tracks_, &sources_}) rows->bind(1, ids.first).bind(2, ids.second);
        loaded_files read;
        bool has_track = tracks_.step();
        bool has_source = sources_.step();
        while (files_.step()) {
            stored_file file{.id = files_.integer(0),
                             .folder = files_.integer(1),
                             .stamp = {files_.integer(3), files_.integer(4)},
                             .device = static_cast<std::uint64_t>(files_.integer(5)),
                             .arrived = static_cast<std::uint64_t>(files_.integer(7))};
            if (!files_.is_null(6)) file.sound = static_cast<std::uint64_t>(files_.integer(6));
            const auto path = text_of(files_.blob(2));
            auto& next = read.files.emplace_back(loaded_file{{std::move(file)}, {}, hash_of_path(path)});
            const auto id = next.file.id;
            for (; has_track && tracks_.integer(0) <= id; has_track = tracks_.step()) {
                next.file.tracks.push_back(handle_of(path, static_cast<std::uint32_t>(tracks_.integer(1))));
                if (keys_ != nullptr) read.keys.push_back(key_of(next.file.tracks.back()->location()));
            }
            if (next.file.tracks.empty()) next.empty = handle_of(path, 0);
            for (; has_source && sources_.integer(0) <= id; has_source = sources_.step())
                next.file.sources.push_back({from_blob(sources_.blob(1)), {sources_.integer(2), sources_.integer(3)}});
        }
        tracks_.reset();
        sources_.reset();
        return read;
    }

private:
    static track_ptr handle_of(std::string_view path, std::uint32_t subsong) {
        return service_new<track>(playable_location{std::string(path), subsong});
    }
    /// From the current row.
    std::uint64_t key_of(const playable_location& location) {
        const auto info = file_info::from_bytes(text_of(tracks_.blob(2)));
        return info ? keys_->key_of(*info, location) : 0;
    }

    key_maker* const keys_;
    std::unique_ptr<sqlite::database> database_;
    sqlite::statement files_, tracks_, sources_;
};

/// Parts that were read in any order, taken in theirs.
class read_parts {
public:
    void put(std::size_t which, loaded_files&& part) {
        const std::lock_guard guard(mutex_);
        waiting_.emplace(which, std::move(part));
    }
    std::optional<loaded_files> take_next() {
        const std::lock_guard guard(mutex_);
        const auto found = waiting_.find(next_);
        if (found == waiting_.end()) return std::nullopt;
        ++next_;
        return std::move(waiting_.extract(found).mapped());
    }

private:
    std::mutex mutex_;
    std::size_t next_ = 0;
    std::map<std::size_t, loaded_files> waiting_;
};

}  // namespace

void load_files(const library_store& store, key_maker* keys, const std::function<void(loaded_files&&)>& enter) {
    const id_parts parts(store.database());
    read_parts read;
    std::atomic<std::size_t> next = 0;
    worker_group readers(2, nullptr);
    const auto read_rest = [&] {
        file_reader reader(store, keys);
        for (std::size_t which = next++; which < parts.count() && !readers.is_stopped(); which = next++) {
            read.put(which, reader.read(parts[which]));
            readers.wake();
        }
    };
    readers.run(parts.count(), read_rest, [&] {
        while (auto part = read.take_next()) enter(*std::move(part));
    });
}

}  // namespace ostrevan::library
