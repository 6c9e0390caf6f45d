#include "player/remote/message.h"

#include <gmock/gmock.h>

#include "tests/player/temporary_folder.h"

namespace ostrevan::remote {
namespace {

using namespace std::string_literals;
using testing::HasSubstr;

TEST(message, arrives_as_it_was_in_pieces_of_any_size) {
    const message sent[] = {
        command{{"rate", "4", "a\xff\x80 \n", "", std::string(70'000, 'x')}, "/home/\xfe", "xterm", false},
        interrupt{},
        foreground{true},
        done{130},
        refusal{"0.1", true, "busy"},
    };
    std::string bytes;
    for (const auto& each : sent) bytes += frame_of(encode(each));
    frame_reader reader;
    std::vector<std::string> arrived;
    for (const char each : bytes) {
        reader.add({&each, 1});
        if (const auto content = reader.next()) arrived.push_back(encode(decode(*content)));
    }
    ASSERT_EQ(arrived.size(), std::size(sent));
    for (std::size_t i = 0; i < arrived.size(); ++i) EXPECT_EQ(arrived[i], encode(sent[i]));
    const auto first = std::get<command>(decode(arrived[0]));
    EXPECT_EQ(first.words, std::get<command>(sent[0]).words);
    EXPECT_EQ(first.home + first.terminal_kind, "/home/\xfexterm");
    EXPECT_FALSE(first.is_in_foreground);
    EXPECT_TRUE(std::get<foreground>(decode(arrived[2])).is_in_foreground);
    EXPECT_EQ(std::get<done>(decode(arrived[3])).status, 130);
    const auto last = std::get<refusal>(decode(arrived[4]));
    EXPECT_TRUE(last.is_ending);
    EXPECT_EQ(last.version + last.reason, "0.1busy");
}

TEST(message, is_refused_when_it_is_damaged_hostile_or_of_another_version) {
    const auto many = [](const char* bytes) {
        std::string text;
        for (int i = 0; i < 1'000'000; ++i) text += bytes;
        return text;
    };
    const std::pair<std::string, const char*> cases[] = {
        {"", "damaged"},
        {"\x01", "damaged"},                         // no map
        {encode(interrupt{}).substr(1), "damaged"},  // a text, and then more
        {encode(interrupt{}) + "\x01", "damaged"},
        {encode(done{1}).substr(0, 15), "damaged"},
        {many("\x81"), "damaged"},  // lists in lists
        {many("\xa1\x01"), "damaged"},
        {many("\x7f"), "damaged"},  // texts of texts
        {many("\x5f"), "damaged"},
        {"\xc0\x01", "damaged"},                              // a tag
        {"\x9b\xff\xff\xff\xff\xff\xff\xff\xff", "damaged"},  // 2^64 - 1 values
        {"\xa1\x64kind\x7b\xff\xff\xff\xff\xff\xff\xff\xff", "damaged"},
        {"\xa1\x64kind\x64quit", "unknown kind"},
        {"\xa2\x64kind\x64"
         "done\x66status\x19\x01\x2c",
         "exit status"},
        {"\xa2\x64kind\x64"
         "done\x66status\x20",
         "exit status"},
        {"\xa2\x64kind\x67"
         "command\x67version\x63"
         "0.1",
         "version 0.1"},
        {"\xa2\x64kind\x67"
         "command\x67version\x01",
         "damaged"},
    };
    for (const auto& [bytes, reason] : cases)
        EXPECT_THAT(failure_of([&] { decode(bytes); }), HasSubstr(reason)) << bytes.substr(0, 40);
    frame_reader reader;
    reader.add("\x00\x80\x00\x01"s);
    EXPECT_THROW(reader.next(), malformed);
}

}  // namespace
}  // namespace ostrevan::remote
