// The table of what reads and what changes, held against every code that the wrappers of the tool hold.
#include "recorder/request.h"

#include "tests/support/paths.h"
#include "tests/support/patterns.h"
#include "tests/support/sandbox.h"

#include <filesystem>
#include <map>
#include <set>

#include <gtest/gtest.h>

namespace zebtest {
namespace {

using zebrec::Effect;
namespace fs = std::filesystem;

/// A code of the wrappers and the name beside it: of the constant that holds it or of the function that sends it.
using Codes = std::map<std::string, std::string>;

/// Walks over the wrappers. A function's name is known from the line that begins it, a constant's from its own line.
Codes codesOfWrappers(const std::string& pattern) {
    const std::string function = R"(^(?:std::uint32_t|int) (\w+)\()";
    const std::string constant = R"(constexpr [\w:]+ k(\w+)[{ =])";
    Codes codes;
    for (const auto& entry : fs::directory_iterator(fs::path(paths::sourceDir) / "storelib/common/StoreLib")) {
        if (entry.path().extension() != ".cpp")
            continue;
        std::string name;
        std::istringstream text(readFile(entry.path()));
        for (std::string line; std::getline(text, line);) {
            for (const Match& match : matchesIn(line, function))
                name = match[1];
            std::string here = name;
            for (const Match& match : matchesIn(line, constant))
                here = match[1];
            for (const Match& match : matchesIn(line, pattern))
                codes.emplace(match[1] + (match.size() > 2 ? "/" + match[2] : ""), here);
        }
    }
    return codes;
}

bool readsByName(const std::string& name) {
    return !matchesIn(name, "^(SL)?(Get|Read|Scan|Is|Check|Opcode|LogSense)").empty();
}

std::string hex(unsigned value, int width) {
    char text[16];
    std::snprintf(text, sizeof text, "0x%0*X", width, value);
    return text;
}

TEST(RequestTable, KnowsEveryCommandOfTheWrappersAndNoOther) {
    const Codes codes = codesOfWrappers(R"(\{(0x[0-9A-F]{2}), (0x[0-9A-F]{2})\})");
    ASSERT_GT(codes.size(), 45U);
    std::set<std::string> unused;
    for (const auto& row : zebrec::requestRows())
        unused.insert(hex(row.type, 2) + "/" + hex(row.cmd, 2));
    for (const auto& [code, name] : codes) {
        const auto type = static_cast<std::uint8_t>(std::stoul(code.substr(0, 4), nullptr, 16));
        const auto cmd = static_cast<std::uint8_t>(std::stoul(code.substr(5), nullptr, 16));
        if (type == 0x06)
            continue; // the pass-throughs, whose rows are those of their own codes
        const auto* row = zebrec::findRequest(type, cmd);
        ASSERT_NE(row, nullptr) << code << " of " << name << " has no row in recorder/request_table.cpp";
        EXPECT_EQ(row->effect == Effect::kReads, readsByName(name)) << code << " of " << name;
        unused.erase(code);
    }
    // Initialisation, exit and version are sent with the codes apart.
    EXPECT_EQ(unused, (std::set<std::string>{"0x00/0x00", "0x00/0x04", "0x00/0x09"}));
}

TEST(RequestTable, KnowsEveryControllerCommandOfTheWrappersAndNoOther) {
    const Codes codes = codesOfWrappers(R"((0x0[0-9A-F]{7}))");
    ASSERT_GT(codes.size(), 10U);
    for (const auto& [code, name] : codes) {
        const auto* row = zebrec::findDcmd(static_cast<std::uint32_t>(std::stoul(code, nullptr, 16)));
        ASSERT_NE(row, nullptr) << code << " of " << name << " has no row in recorder/request_table.cpp";
        EXPECT_EQ(row->effect == Effect::kReads, readsByName(name)) << code << " of " << name;
    }
    EXPECT_EQ(codes.size(), zebrec::dcmdRows().size());
}

TEST(RequestTable, KnowsEveryScsiCommandOfTheWrappers) {
    const Codes codes = codesOfWrappers(R"(constexpr std::uint8_t k(?:LogSense|Read10) = (0x[0-9A-F]{2}))");
    ASSERT_EQ(codes.size(), zebrec::scsiRows().size());
    for (const auto& [code, name] : codes)
        EXPECT_NE(zebrec::findScsi(static_cast<std::uint8_t>(std::stoul(code, nullptr, 16))), nullptr) << code;
    // A third command byte must come with a name of its own, and so into the test above.
    const std::string wrappers = readFile(fs::path(paths::sourceDir) / "storelib/common/StoreLib/passthrough.cpp");
    for (const Match& assignment : matchesIn(wrappers, R"(cdb\[0\] = (\w+);)"))
        EXPECT_TRUE(assignment[1] == "kLogSense" || assignment[1] == "kRead10") << assignment[1];
}

TEST(RequestTable, WhatItDoesNotKnowChanges) {
    for (const auto& [type, cmd] : {std::pair{0x09, 0x00}, {0x01, 0xFF}, {0x06, 0x00}, {0x06, 0x03}}) {
        zebrec::Header header{};
        header[zebrec::kTypeAt] = static_cast<std::uint8_t>(type);
        header[zebrec::kCommandAt] = static_cast<std::uint8_t>(cmd);
        std::vector<std::uint8_t> data(64, 0xAA); // no known opcode, no known operation code
        EXPECT_EQ(zebrec::Request::of(header, data).effect(), Effect::kChanges) << type << "/" << cmd;
        EXPECT_EQ(zebrec::Request::of(header, {}).effect(), Effect::kChanges) << type << "/" << cmd << ", no data";
    }
}

} // namespace
} // namespace zebtest
