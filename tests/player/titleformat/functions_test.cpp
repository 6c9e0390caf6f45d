#include <gtest/gtest.h>

#include "tests/player/titleformat/fields.h"

namespace ostrevan::titleformat {
namespace {

const table_of_fields track({{"a", "Straße"}, {"n", "3/12"}, {"zero", "0"}, {"blank", "\u00A0 x y\t"}, {"bad", "\xFFz\xC3"}},
                            {{"none", "?"}});

TEST(functions, decide_by_what_was_found) {
    expect_each(track, true,
                {"$if(%none%,yes,%a%) → Straße", "$if2(%none%,%a%) → Straße", "$if3(%none%,%none%,%n%,%a%) → 3/12",
                 "$ifequal(%n%,3,%a%,no) → Straße", "$not(%none%) → ", "$and(%a%,%n%) → ", "$or(%none%,%n%) → ",
                 "$xor(%a%,%none%) → ", "$strcmp(a,a) → ", "$stricmp(ΟΔΟΣ,οδος) → "});
    expect_each(track, false,
                {"$if(%a%,%none%,no) → ?", "$if2(%none%,-) → -", "$if3(%none%,x,y) → y", "$ifequal(1,2,a) → ",
                 "$ifgreater(-2,-3,yes,no) → yes", "$ifgreater(3,3,yes,no) → no", "$iflonger(%a%,5,yes,no) → yes",
                 "$iflonger(%a%,6,yes,no) → no", "$not(%a%) → ", "$and(%a%,%none%) → ", "$or(%none%,x) → ",
                 "$xor(%a%,%n%) → ", "$strcmp(a,A) → ", "$stricmp(a,b) → ", "$if($strcmp(%n%,3/12),same,other) → same"});
}

TEST(functions, calculate_with_whole_numbers) {
    expect_each(track, true, {"$add(%n%,2,-10) → -5", "$mul(4,%n%) → 12", "$max(4,-2,%n%) → 4", "$num(%n%,2) → 03"});
    expect_each(track, false,
                {"$sub(%none%,5) → -5", "$div(-7,2) → -3", "$mod(-7,2) → -1", "[$div(%n%,%zero%) x] → ", "$mod(5,0) → ",
                 "$div(-9223372036854775808,-1) → 9223372036854775807", "$mod(-9223372036854775808,-1) → 0",
                 "$add(9223372036854775807,1) → 9223372036854775807", "$sub(-9223372036854775808,1) → -9223372036854775808",
                 "$mul(9223372036854775807,-2) → -9223372036854775808", "$add(99999999999999999999,0) → 9223372036854775807",
                 "$add(-99999999999999999999, +7) → -9223372036854775801", "$min(4,-2,9) → -2", "$num(-5,3) → -05",
                 "$num(123,2) → 123", "$num(x,0) → 0"});
}

TEST(functions, work_on_characters) {
    expect_each(
        track, true,
        {"$lower(ÀÉЖ%a%) → àéжstraße", "$upper(%bad%) → \xFFZ\xC3", "$pad(%a%,3) → Straße", "$len(%a%) → 6",
         "$len(%bad%) → 3", "$left(%a%,5) → Straß", "$right(%a%,2) → ße", "$substr(%a%,5,6) → ße", "$trim(%blank%) → x y"});
    expect_each(track, false,
                {"$upper(àéж) → ÀÉЖ",
                 "$caps(don''t STOP (édith)/x 2ND) → Don't Stop (Édith)/X 2nd",
                 "$abbr(The Élan Vital) → TÉV",
                 "$abbr(short,5) → short",
                 "$abbr(long one,5) → lo",
                 "$pad(éa,4)| → éa  |",
                 "$pad_right(éa,4,·-) → ··éa",
                 "$pad(a,3,) → a",
                 "$repeat(ab,3) → ababab",
                 "$repeat(ab,-1) → ",
                 "$replace(aXbXX,X,--) → a--b----",
                 "$replace(aaa,aa,a) → aa",
                 "$replace(a,,x) → a",
                 "$char(9733) → ★",
                 "$char(55296) → ",
                 "$char(0) → ",
                 "$char(4294967361) → ",
                 "$left(ab,9) → ab",
                 "$left(ab,-1) → ",
                 "$right(ab,9) → ab",
                 "$substr(abc,2,99) → bc",
                 "$substr(abc,0,1) → a",
                 "$substr(abc,3,2) → ",
                 "$substr(abc,9,9) → ",
                 "$insert(éab,-,1) → é-ab",
                 "$insert(ab,-,9) → ab-",
                 "$trim(  ) → "});
}

}  // namespace
}  // namespace ostrevan::titleformat
