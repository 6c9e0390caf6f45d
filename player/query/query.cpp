#include "player/query/query.h"

#include "player/query/condition.h"

namespace ostrevan::query {

bool query::matches(const titleformat::field_source& fields, std::chrono::sys_seconds now) const {
    std::string text, folded;
    return root_->matches({fields, now, text, folded});
}

}  // namespace ostrevan::query
