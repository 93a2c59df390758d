// The three forms in which an operator names controllers, LDs and PDs.
#include <iterator>
#include <sstream>

#include <gtest/gtest.h>

#include "main/zebcli_cmd_com/input/targets.h"

namespace zebtest {
namespace {

template <class List>
std::vector<int> used(const List& list) {
    return {list.begin(), std::find(list.begin(), list.end(), kNoTarget)};
}

using Numbers = std::vector<int>;

Numbers upTo(int count) {
    Numbers numbers(static_cast<std::size_t>(count));
    for (int i = 0; i < count; ++i)
        numbers[static_cast<std::size_t>(i)] = i;
    return numbers;
}

/// "0,1,2,..." with a text before each number.
std::string joined(int count, const std::string& before = "") {
    std::string text;
    for (int i = 0; i < count; ++i)
        text += (i == 0 ? "" : ",") + before + std::to_string(i);
    return text;
}

std::vector<std::string> words(const std::string& text) {
    std::istringstream stream(text);
    return {std::istream_iterator<std::string>(stream), {}};
}

TEST(UnitTargets, Controllers) {
    const struct {
        const char* text;
        int controllers, verdict;
        Numbers list; // for verdict 1 the missing number alone
    } cases[] = {
        {"aall", 1, 0, {0}},
        {"aall", 4, 0, {0, 1, 2, 3}},
        {"", 1, 0, {0}},
        {"", 2, 2, {}},
        {"a1", 2, 0, {1}},
        {"a3,1,2,0", 4, 0, {0, 1, 2, 3}},
        {"a2,0", 3, 0, {0, 2}},
        {"a2", 2, 1, {2}},
        {"a1,3", 3, 1, {3}},
        {"a3,4", 3, 1, {3}},
        {"a0,1,2,3,0,1", 4, 0, {0, 1, 2, 3}},
        {"a0,1,2,3,7,x", 4, 0, {0, 1, 2, 3}},
        {"a3,2,1,0,5,0", 4, 0, {3, 2, 1, 0}}, // ends at once, before the list is sorted
        {"a0,1,2,3,0", 4, 3, {}},
        {"a0,1,2,3,4", 4, 3, {}},
        {"a0,1,2,3,0,", 4, 3, {}},
        {"a0,1,2,3,00,1", 4, 3, {}},
        {"a0,1,2,3,x", 4, 3, {}},
    };
    for (const auto& c : cases) {
        CtrlList list;
        list.fill(kNoTarget);
        EXPECT_EQ(c.verdict, GetAdapterNo(c.text, list, c.controllers)) << c.text;
        list[1] = c.verdict == kAdapterMissing ? kNoTarget : list[1];
        EXPECT_TRUE(c.verdict > kAdapterMissing || c.list == used(list)) << c.text << testing::PrintToString(list);
    }
    for (const auto& text : words("a a01 a00 a0,0 a4 a0, a,0 a0,,1 a0;1 a-1 a0x aal aallx a256 a257 a1,257 a\xC0 "
                                  "a4294967296 a18446744073709551617")) {
        CtrlList list;
        list.fill(kNoTarget);
        EXPECT_EQ(3, GetAdapterNo(text.c_str(), list, 4)) << text;
    }
}

TEST(UnitTargets, LogicalDrives) {
    const std::pair<std::string, Numbers> good[] = {{"", upTo(64)},
                                                    {"lall", upTo(64)},
                                                    {"l5,3", {5, 3}},
                                                    {"l07", {7}},
                                                    {"l63", {63}},
                                                    {"l", {}},
                                                    {"l5,", {5}},
                                                    {"l00,1", {0, 1}},
                                                    {"l" + joined(63) + ",", upTo(63)},
                                                    {"l" + joined(64), upTo(64)}};
    for (const auto& [text, wanted] : good) {
        LdList list;
        list.fill(kNoTarget);
        EXPECT_EQ(1, GetLogicalDriveNo(text.c_str(), list)) << text;
        EXPECT_EQ(wanted, used(list)) << text;
    }
    for (const auto& text : words("l64 l99 l100 l064 l5,5 l1,01 l,5 l5,,6 l5;6 l-5 lall, l5,x l4294967301 l" +
                                  joined(64) + ", l" + joined(65))) {
        LdList list;
        list.fill(kNoTarget);
        EXPECT_EQ(0, GetLogicalDriveNo(text.c_str(), list)) << text;
    }
}

TEST(UnitTargets, PhysicalDrives) {
    const struct {
        std::string text;
        Numbers sorted, asTyped;
    } good[] = {{"", upTo(255), upTo(255)}, // the 256th entry, 255, ends the list
                {"pd[32:5,32:3]", {3, 5}, {5, 3}},
                {"pd[1:256]", {0}, {0}},
                {"pd[1:7,1:256,1:2]", {0, 2, 7}, {7, 0, 2}},
                {"pd[:5]", {5}, {5}},
                {"pd[x:007,252:6]", {6, 7}, {7, 6}},
                {"pd[1:5,", {5}, {5}},
                {"pd[1:5,6]", {5}, {5}},
                {"pd[1:255]", {}, {}},
                {"pd[" + joined(255, "1:") + "]", upTo(255), upTo(255)}};
    for (const auto& c : good)
        for (const bool keepOrder : {false, true}) {
            PdList list;
            list.fill(9);
            EXPECT_EQ(1, GetPhysicalDriveNo(c.text.c_str(), list, keepOrder ? 1 : 0)) << c.text;
            EXPECT_EQ(keepOrder ? c.asTyped : c.sorted, used(list)) << c.text;
        }
    for (const auto& text :
         words("pd[5] pd pd[1:5]x pd[1:5], pd[1:5 pd[1:] pd[1: pd[1:x] pd[1:-5] pd[1:5,1:x] pd[1:2:3] "
               "pd[1:5;1:6] pd[1:257] pd[1:999] pd[1:1000] pd[1:0005] pd[1:4294967296] pd[1:5,2:5] pd[1:0,1:256] "
               "pd[1:5]] pd[1:5]1:6] pd[" +
               joined(256, "1:") + "]")) {
        PdList list;
        EXPECT_EQ(0, GetPhysicalDriveNo(text.c_str(), list, 0)) << text;
    }
}

} // namespace
} // namespace zebtest
