#pragma once

#include <cstddef>
#include <cstdint>
#include <iterator>
#include <memory>
#include <string_view>
#include <utility>
#include <vector>

#include "player/library/library_file.h"

namespace ostrevan::library {

/// The files of the library, found by path, and visited in the order in which they came, which is that of the database. The
/// texts of the paths are those of track handles, which live as long as their table. A file stays where it is in memory
/// until it is erased.
class library_files {
public:
    using value_type = std::pair<std::string_view, library_file>;

    template <typename Files, typename Value>
    class basic_iterator {
    public:
        using value_type = library_files::value_type;
        using difference_type = std::ptrdiff_t;
        using iterator_category = std::forward_iterator_tag;
        using reference = Value&;
        using pointer = Value*;

        basic_iterator() noexcept = default;
        basic_iterator(Files& files, std::size_t at) noexcept : files_(&files), at_(at) { skip_free(); }
        Value& operator*() const noexcept { return files_->place(at_); }
        Value* operator->() const noexcept { return &**this; }
        basic_iterator& operator++() noexcept {
            ++at_;
            skip_free();
            return *this;
        }
        basic_iterator operator++(int) noexcept {
            const auto before = *this;
            ++*this;
            return before;
        }
        bool operator==(const basic_iterator& other) const noexcept { return at_ == other.at_; }

    private:
        friend class library_files;
        void skip_free() noexcept {
            while (at_ < files_->places_ && (**this).first.data() == nullptr) ++at_;
        }

        Files* files_ = nullptr;
        std::size_t at_ = 0;
    };
    using iterator = basic_iterator<library_files, value_type>;
    using const_iterator = basic_iterator<const library_files, const value_type>;

    [[nodiscard]] iterator begin() noexcept { return {*this, 0}; }
    [[nodiscard]] iterator end() noexcept { return {*this, places_}; }
    [[nodiscard]] const_iterator begin() const noexcept { return {*this, 0}; }
    [[nodiscard]] const_iterator end() const noexcept { return {*this, places_}; }
    [[nodiscard]] std::size_t size() const noexcept { return places_ - free_.size(); }

    [[nodiscard]] iterator find(std::string_view path) noexcept { return {*this, position_of(path)}; }
    [[nodiscard]] const_iterator find(std::string_view path) const noexcept { return {*this, position_of(path)}; }
    /// The path must be there.
    [[nodiscard]] const library_file& at(std::string_view path) const noexcept { return find(path)->second; }

    /// The path must be new.
    iterator add(std::string_view path);
    /// The same with the hash of the path, which may be there already: then returns where, and false.
    std::pair<iterator, bool> try_add(std::string_view path, std::uint32_t hash);
    void erase(iterator which) noexcept;
    void reserve(std::size_t files);
    /// Brings the place of a path into the cache, for one that is added soon.
    void prefetch(std::uint32_t hash) const noexcept { __builtin_prefetch(&slots_[hash & (slots_.size() - 1)]); }

private:
    static constexpr std::size_t block_size = 1024;
    struct hashed {
        std::uint32_t hash = 0;
        std::uint32_t position = 0;  // one more than the place; 0 for a free slot
    };

    [[nodiscard]] value_type& place(std::size_t at) const noexcept { return blocks_[at / block_size][at % block_size]; }
    /// The slot of the path, or the free one where it belongs.
    [[nodiscard]] std::size_t slot_of(std::string_view path, std::uint32_t hash) const noexcept;
    [[nodiscard]] std::size_t position_of(std::string_view path) const noexcept;

    std::vector<std::unique_ptr<value_type[]>> blocks_;
    std::size_t places_ = 0;
    std::vector<std::size_t> free_;  // places of erased files, which have no path
    // Open addressing. The number of slots is a power of two; at most three quarters are in use.
    std::vector<hashed> slots_ = std::vector<hashed>(8);
};

}  // namespace ostrevan::library
