#pragma once

#include <cstddef>
#include <initializer_list>
#include <iterator>
#include <span>
#include <utility>
#include <vector>

namespace nuv {

/// A read-only list whose owner decides how its items are stored. Lists cross the player's boundary in this form.
/// An index at or above `get_count()` is a programming error.
template <typename T>
class list_base_const_t {
public:
    [[nodiscard]] virtual std::size_t get_count() const noexcept = 0;
    [[nodiscard]] virtual const T& get_item(std::size_t index) const = 0;

    [[nodiscard]] const T& operator[](std::size_t index) const { return get_item(index); }
    [[nodiscard]] bool empty() const noexcept { return get_count() == 0; }

    class iterator {
    public:
        using iterator_category = std::input_iterator_tag;
        using value_type = T;
        using difference_type = std::ptrdiff_t;
        using pointer = const T*;
        using reference = const T&;

        iterator(const list_base_const_t& list, std::size_t index) noexcept : list_(&list), index_(index) {}
        const T& operator*() const { return list_->get_item(index_); }
        iterator& operator++() noexcept {
            ++index_;
            return *this;
        }
        iterator operator++(int) noexcept {
            const iterator before = *this;
            ++index_;
            return before;
        }
        bool operator==(const iterator& other) const noexcept { return index_ == other.index_; }

    private:
        const list_base_const_t* list_;
        std::size_t index_;
    };
    [[nodiscard]] iterator begin() const noexcept { return {*this, 0}; }
    [[nodiscard]] iterator end() const noexcept { return {*this, get_count()}; }

protected:
    list_base_const_t() = default;
    list_base_const_t(const list_base_const_t&) = default;
    list_base_const_t(list_base_const_t&&) noexcept = default;
    list_base_const_t& operator=(const list_base_const_t&) = default;
    list_base_const_t& operator=(list_base_const_t&&) noexcept = default;
    ~list_base_const_t() = default;
};

/// A list that owns its items.
template <typename T>
class list_t final : public list_base_const_t<T> {
public:
    list_t() = default;
    explicit list_t(std::vector<T> items) noexcept : items_(std::move(items)) {}
    list_t(std::initializer_list<T> items) : items_(items) {}
    explicit list_t(const list_base_const_t<T>& source) {
        items_.reserve(source.get_count());
        for (const T& item : source) items_.push_back(item);
    }

    [[nodiscard]] std::size_t get_count() const noexcept override { return items_.size(); }
    [[nodiscard]] const T& get_item(std::size_t index) const override { return items_[index]; }

    [[nodiscard]] std::vector<T>& items() noexcept { return items_; }
    [[nodiscard]] const std::vector<T>& items() const noexcept { return items_; }

private:
    std::vector<T> items_;
};

/// A list over items that somebody else keeps alive for as long as the list is used.
template <typename T>
class list_view_t final : public list_base_const_t<T> {
public:
    explicit list_view_t(std::span<const T> items) noexcept : items_(items) {}
    [[nodiscard]] std::size_t get_count() const noexcept override { return items_.size(); }
    [[nodiscard]] const T& get_item(std::size_t index) const override { return items_[index]; }

private:
    std::span<const T> items_;
};

}  // namespace nuv
