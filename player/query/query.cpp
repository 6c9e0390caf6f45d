#include "player/query/query.h"

#include "player/query/condition.h"

namespace ostrevan::query {

bool query::matches(const titleformat::field_source& fields, const query_clock& clock) const {
    std::string text, folded;
    return root_->matches({fields, clock, text, folded});
}

}  // namespace ostrevan::query
