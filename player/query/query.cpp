#include "player/query/query.h"

#include "player/query/condition.h"

namespace ostrevan::query {

bool query::matches(const titleformat::field_source& fields, const query_clock& clock) const {
    std::string text, folded;
    return root_->matches({fields, clock.now, text, folded});
}

query_clock query_clock::at(std::string_view text) {
    constexpr std::string_view form = "YYYY-MM-DD HH:MM:SS";
    const auto moment = parse_period(text);
    if (!moment || text.size() != form.size()) throw std::invalid_argument("expected a time as " + std::string(form));
    return {moment->first};
}

}  // namespace ostrevan::query
