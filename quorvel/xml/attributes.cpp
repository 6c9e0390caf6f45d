#include "quorvel/xml/attributes.h"

#include <bit>
#include <functional>

namespace Vek {
namespace {

/// Up to this many are searched one after the other.
constexpr std::size_t few = 16;

}  // namespace

const std::string* xmlAttributes::find(std::string_view name) const noexcept {
    if (used_ > few) {
        const std::uint32_t found = slots_[slot_of(name)];
        return found == 0 ? nullptr : &items_[found - 1].second;
    }
    for (const auto& item : *this)
        if (item.first == name) return &item.second;
    return nullptr;
}

bool xmlAttributes::add(std::string_view name, std::string_view value) {
    alike_ = alike_ && used_ < distinct_ && items_[used_].first == name;
    if (!alike_) {
        if (find(name) != nullptr) return false;
        if (used_ == items_.size()) items_.emplace_back();
        items_[used_].first = name;
    }
    add_expected(value);
    return true;
}

void xmlAttributes::add_expected(std::string_view value) {
    items_[used_++].second = value;
    if (used_ > few) enter_last();
}

void xmlAttributes::clear() noexcept {
    if (!alike_) distinct_ = used_;
    alike_ = true;
    used_ = 0;
}

void xmlAttributes::enter_last() {
    if (used_ == few + 1 || 2 * used_ > slots_.size()) make_slots();
    else slots_[slot_of(items_[used_ - 1].first)] = static_cast<std::uint32_t>(used_);
}

void xmlAttributes::remove_if(bool (*unwanted)(const value_type&)) {
    std::size_t kept = 0;
    for (std::size_t i = 0; i < used_; ++i)
        if (!unwanted(items_[i])) std::swap(items_[kept++], items_[i]);
    used_ = kept;
    make_slots();
}

void xmlAttributes::make_slots() {
    if (used_ <= few) return;
    slots_.assign(std::bit_ceil(4 * used_), 0);
    for (std::size_t i = 0; i < used_; ++i) slots_[slot_of(items_[i].first)] = static_cast<std::uint32_t>(i + 1);
}

std::size_t xmlAttributes::slot_of(std::string_view name) const noexcept {
    const std::size_t mask = slots_.size() - 1;
    std::size_t slot = std::hash<std::string_view>()(name) & mask;
    while (slots_[slot] != 0 && items_[slots_[slot] - 1].first != name) slot = (slot + 1) & mask;
    return slot;
}

}  // namespace Vek
