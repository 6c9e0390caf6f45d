#include <algorithm>
#include <utility>

#include "player/query/condition.h"

namespace ostrevan::query {

namespace {

class always final : public condition {
public:
    [[nodiscard]] bool matches(const examined&) const override { return true; }
};

class inverted final : public condition {
public:
    explicit inverted(condition_ptr inner) noexcept : inner_(std::move(inner)) {}
    [[nodiscard]] bool matches(const examined& track) const override { return !inner_->matches(track); }

private:
    condition_ptr inner_;
};

/// Evaluates conditions until one returns `Decisive`.
template <bool Decisive>
class series final : public condition {
public:
    explicit series(std::vector<condition_ptr> conditions) noexcept : conditions_(std::move(conditions)) {}
    [[nodiscard]] bool matches(const examined& track) const override {
        for (const auto& item : conditions_)
            if (item->matches(track) == Decisive) return Decisive;
        return !Decisive;
    }

private:
    std::vector<condition_ptr> conditions_;
};

template <bool Decisive>
condition_ptr series_of(std::vector<condition_ptr> conditions) {
    if (conditions.size() == 1) return std::move(conditions.front());
    return std::make_unique<series<Decisive>>(std::move(conditions));
}

}  // namespace

condition_ptr everything() { return std::make_unique<always>(); }
condition_ptr negation(condition_ptr inner) { return std::make_unique<inverted>(std::move(inner)); }
condition_ptr all_of(std::vector<condition_ptr> conditions) { return series_of<false>(std::move(conditions)); }
condition_ptr any_of(std::vector<condition_ptr> conditions) { return series_of<true>(std::move(conditions)); }

}  // namespace ostrevan::query
