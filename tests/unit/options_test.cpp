// Options of a command: words and their groups, and targets.
#include <cstring>

#include <gtest/gtest.h>

#include "main/zebcli_cmd_com/input/options.h"

namespace zebtest {
namespace {

using Arguments = std::vector<std::string>;

struct ArgV {
    explicit ArgV(Arguments arguments) : texts(std::move(arguments)) {
        for (auto& text : texts)
            pointers.push_back(text.data());
    }
    int argc() const { return static_cast<int>(texts.size()); }
    Arguments texts;
    std::vector<char*> pointers;
};

TEST(UnitOptions, AcceptedArgumentsAreKept) {
    static constexpr OptionWord kWords[] = {
        {.word = "on", .bit = 1, .refusedAfter = 3},
        {.word = "off", .bit = 2, .refusedAfter = 3},
        {.word = "name",
         .bit = 4,
         .refusedAfter = 4,
         .acceptsValue = [](const char* value) { return std::strlen(value) == 4; }},
        {.word = "deep", .bit = 8, .refusedAfter = 8},
    };
    constexpr OptionTable kTable{.source = "unit",
                                 .badToken = BadToken::Itself,
                                 .words = kWords,
                                 .takesControllers = true,
                                 .takesLds = true,
                                 .takesPds = true};
    ArgV argv({"zebcli", "-cmd", "-NAME", "-off", "DEEP", "x-On", "-aALL", "-L3,1", "-PD[x:9,y:4]"});
    Options options;
    ASSERT_TRUE(parseOptions(kTable, argv.argc(), argv.pointers.data(), 2, options));
    EXPECT_EQ(1U | 4U | 8U, options.bits);
    EXPECT_STREQ("-off", options.value) << "a value is taken as it was typed";
    EXPECT_EQ((CtrlList{0, 1, kNoTarget, kNoTarget}), options.ctrls);
    EXPECT_EQ(3, options.lds[0]);
    EXPECT_EQ(4, options.pds[0]);
    for (const std::size_t length : {4U, 5U}) {
        ArgV named({"zebcli", "-cmd", "-name", std::string(length, 'N')});
        Options given;
        testing::internal::CaptureStdout();
        EXPECT_EQ(length == 4, parseOptions(kTable, named.argc(), named.pointers.data(), 1, given)) << length;
        EXPECT_EQ(length == 4, testing::internal::GetCapturedStdout().empty());
    }
    // An option longer than any word is compared whole, not by its beginning.
    ArgV longest({"zebcli", "-cmd", "-on" + std::string(100000, 'n')});
    Options given;
    testing::internal::CaptureStdout();
    EXPECT_FALSE(parseOptions(kTable, longest.argc(), longest.pointers.data(), 1, given));
    EXPECT_EQ(9999U, testing::internal::GetCapturedStdout().size()) << "the message is cut";
}

} // namespace
} // namespace zebtest
