// The command log as a ring of lines: where a record goes, whatever the file is like.
#include <chrono>
#include <sstream>
#include <sys/stat.h>
#include <unistd.h>

#include <gmock/gmock.h>

#include "log/last_error.h"
#include "log/log_lines.h"
#include "tests/support/scripted_library.h"
#include "tests/support/temp_log.h"

namespace zebtest {
namespace {

using testing::ElementsAre;
using Lines = std::vector<std::string>;

constexpr unsigned kFiveLines = 5 * kLogLineBytes;

int put(const std::string& message) {
    return dumpLog(nullptr, 0, message.c_str());
}

/// The lines of the file as they stand, records without their time and process id.
Lines stored(const TempLog& log) {
    std::istringstream file(log.file().bytes());
    Lines lines;
    for (std::string line; std::getline(file, line);) {
        line.erase(line.find_last_not_of(' ') + 1);
        const std::size_t message = line.starts_with('[') ? line.find(' ', line.find("pid=")) + 1 : 0;
        lines.push_back(line.substr(message));
    }
    return lines;
}

TEST(UnitLogRing, TimeStampsNeverRunBackwards) {
    using Clock = std::chrono::system_clock;
    const auto intoSecond = [] { return Clock::now().time_since_epoch() % std::chrono::seconds(1); };
    while (intoSecond() < std::chrono::milliseconds(995)) {
    }
    std::string last;
    for (auto end = Clock::now() + std::chrono::milliseconds(20); Clock::now() < end;) {
        const LogLine line = recordLine(nullptr, 0, "");
        const std::string stamp(line.data(), line.size());
        ASSERT_LE(last, stamp);
        last = stamp;
    }
}

TEST(UnitLogRing, TenThousandLines) {
    const TempLog log;
    for (int i = 1; i <= 9999; ++i)
        put(std::to_string(i));
    EXPECT_THAT(log.file().markers(), ElementsAre(10000));
    put("last");
    EXPECT_EQ(2000000U, log.file().bytes().size());
    EXPECT_THAT(log.file().markers(), ElementsAre(1));
    log.reopen();
    put("first");
    EXPECT_THAT(log.file().markers(), ElementsAre(2));
    const Lines lines = stored(log);
    EXPECT_EQ("first", lines[0]);
    EXPECT_EQ("3", lines[2]);
    EXPECT_EQ("last", lines[9999]);
}

TEST(UnitLogRing, ForeignContentDecidesOnlyWhereTheRecordGoes) {
    const std::string whole = logLine("old");
    const std::string marker = logMarker();
    const struct {
        const char* name;
        std::string content;
        std::size_t at; // where the record must begin
    } cases[] = {
        {"empty", "", 0},
        {"no marker", whole + whole, 0},
        {"a marker on the last line", whole + whole + whole + whole + marker, 800},
        {"a marker beyond the budget", whole + whole + whole + whole + whole + marker, 0},
        {"two markers", whole + marker + whole + marker, 200},
        {"a marker of six bytes", whole + "<END>\n" + whole, 200},
        {"a marker without a newline", whole + "<END>", 200},
        {"a cut marker", whole + "<END", 0},
        {"a marker inside a line", whole + " <END>" + whole, 0},
        {"a short line", "abc\n" + marker, 4},
        {"empty lines", "\n\n\n" + marker, 3},
        {"too many empty lines", "\n\n\n\n\n" + marker, 0},
        {"a line of 200 characters is two", std::string(200, 'x') + "\n" + marker, 201},
        {"a line of 400 characters", std::string(400, 'x') + marker, 400},
        {"bytes of all kinds", std::string("\0\xFF\r\t<END>\0\n", 11) + marker, 11},
        {"a NUL before the marker", std::string(1, '\0') + marker + whole, 0},
        {"nothing but NUL bytes", std::string(1500, '\0'), 0},
    };
    for (const auto& c : cases) {
        const TempLog log(kFiveLines);
        log.file().write(c.content);
        log.reopen();
        EXPECT_EQ(1, put("new")) << c.name;
        const std::string bytes = log.file().bytes();
        EXPECT_NE(std::string::npos, bytes.substr(c.at, 199).find(" new   ")) << c.name;
        EXPECT_EQ('[', bytes[c.at]) << c.name;
        EXPECT_EQ(marker, bytes.substr(c.at == 800 ? 0 : c.at + 200, 200)) << c.name;
        EXPECT_EQ(c.at == 800 ? c.content.substr(200, 600) : c.content.substr(0, c.at),
                  bytes.substr(c.at == 800 ? 200 : 0, c.at == 800 ? 600 : c.at))
            << c.name << ": what is before the record is as it was";
    }
}

/// The rule of the ring, a line at a time.
struct Ring {
    std::string bytes;
    unsigned budget;
    unsigned line = 1; // where the marker stands

    void put(const std::string& text) {
        write(text);
        line = line >= budget ? 1 : line + 1;
        write("<END>");
    }
    void write(const std::string& text) {
        bytes.resize(std::max<std::size_t>(bytes.size(), line * kLogLineBytes));
        bytes.replace((line - 1) * kLogLineBytes, kLogLineBytes, logLine(text));
    }
};

TEST(UnitLogRing, RecordsWithDumpsFollowTheRuleOfTheRing) {
    char record[64];
    std::snprintf(record, sizeof record, "TIME pid=%05d m", static_cast<int>(getpid()));
    const Mask time{R"(\[\d{4}/\d\d/\d\d \d\d:\d\d:\d\d\.\d{3}\] ([^\n]*))", "TIME $1" + std::string(21, ' ')};
    std::uint32_t seed = 0;
    for (const unsigned budget : {1U, 2U, 3U, 5U, 8U, 40U}) {
        const TempLog log(budget * 200 + 199); // a started line is none
        Ring ring{"", budget};
        for (int i = 0; i < 60; ++i) {
            const Bytes choice = randomBytes(++seed, 2);
            const Bytes data(choice[0] % 5 * 16U, 'd'); // up to four rows, of which the middle ones are folded
            const std::string row = "0: 64 64 64 64 64 64 64 64  64 64 64 64 64 64 64 64  dddddddddddddddd";
            EXPECT_EQ(1, dumpLog(nullptr, 0, "m", data.data(), static_cast<unsigned>(data.size())));
            ring.put(record);
            if (!data.empty()) {
                ring.put(std::string(77, '-'));
                ring.put("0000000" + row);
                if (data.size() > 32)
                    ring.put(std::string(25, ' ') + "---  same data  ---");
                if (data.size() > 16)
                    ring.put("000000" + std::to_string(data.size() / 16 - 1) + row);
                ring.put("");
            }
            const std::string got = masked(log.file().bytes(), {time});
            ASSERT_TRUE(sameText(got, ring.bytes)) << "budget " << budget << ", record " << i;
            if (choice[1] % 3 == 0)
                log.reopen();
        }
    }
}

TEST(UnitLogRing, MessageIsCutAtTheEndOfTheLine) {
    const TempLog log;
    put("m");
    const std::size_t room = kLogLineBytes - 1 - log.file().bytes().find(" m "); // with the blank before it
    for (const std::size_t length : {room - 3, room - 2, room - 1, room, room + 1, std::size_t{5000}}) {
        log.take();
        const std::string message = std::string(length - 1, 'm') + "!";
        put(message);
        const std::string line = log.file().bytes().substr(0, kLogLineBytes);
        EXPECT_TRUE(log.file().everyLineExact()) << length;
        std::string wanted = " " + message.substr(0, room - 1);
        wanted.resize(room, ' ');
        EXPECT_EQ(wanted + "\n", line.substr(kLogLineBytes - 1 - room)) << length;
    }
    log.take();
    dumpLog("/a/b/source", 12, "a\tb\nc\rd\x7F\x1B[31m\x01");
    EXPECT_NE(std::string::npos, log.file().bytes().find(" source(12) a b c d  [31m  ")) << log.take();
}

TEST(UnitLogRing, DumpFoldsEqualRows) {
    const std::pair<std::string, std::string> cases[] = {{"AA", "0A 1A"}, // the first and the last are always written
                                                         {"AAA", "0A = 2A"},      {"AAAB", "0A = 3B"},
                                                         {"AAABB", "0A = 3B 4B"}, {"ABBA", "0A 1B = 3A"},
                                                         {"ABAB", "0A 1B 2A 3B"}};
    const TempLog log;
    for (const auto& [rows, wanted] : cases) {
        std::string data;
        std::string text = "F\n" + std::string(77, '-') + "\n";
        for (const char row : rows)
            data += std::string(16, row);
        for (std::size_t i = 0; i < wanted.size(); i += wanted[i] == '=' ? 2 : 3) {
            const std::string hex = wanted[i + 1] == 'A' ? "41 41 41 41 41 41 41 41 " : "42 42 42 42 42 42 42 42 ";
            text += wanted[i] == '=' ? std::string(25, ' ') + "---  same data  ---\n"
                                     : "000000" + wanted.substr(i, 1) + "0: " + hex + " " + hex + " " +
                                           std::string(16, wanted[i + 1]) + "\n";
        }
        dumpLog("s", 1, "F", reinterpret_cast<const unsigned char*>(data.data()), static_cast<unsigned>(data.size()));
        EXPECT_TRUE(sameText(log.take(), text + "\n")) << rows;
    }
    const unsigned char odd[] = {'A', 'z', '0', 0x80, 0xFF, ' ', '-', 0, 0xE9};
    dumpLog("s", 1, "F", odd, sizeof odd);
    EXPECT_TRUE(sameText(log.take(), "F\n" + std::string(77, '-') + "\n00000000: 41 7A 30 80 FF 20 2D 00  E9" +
                                         std::string(23, ' ') + "Az0......\n\n"));
    dumpLog("s", 1, "F", odd, 0);
    EXPECT_EQ("F\n", log.take());
}

TEST(UnitLogRing, OpeningSetsTheModeAndSaysWhyItFails) {
    const TempLog log;
    struct stat info {};
    for (const mode_t mode : {0600U, 0777U}) {
        chmod(log.path().c_str(), mode);
        log.reopen();
        stat(log.path().c_str(), &info);
        EXPECT_EQ(0744U, info.st_mode & 07777U);
    }
    const std::string folder = log.path().parent_path();
    const std::pair<const char*, unsigned> cases[] = {
        {nullptr, 0x100010}, {"", 0x100010}, {"/", 512}, {"/proc/nowhere/x", 512}};
    for (const auto& [name, code] : cases) {
        DLLSetLastError(0, "");
        EXPECT_EQ(0, initLog(name, 1000));
        EXPECT_EQ(code, DLLGetLastError()) << code;
        EXPECT_EQ(0, put("nowhere"));
        log.reopen();
    }
    EXPECT_EQ("", log.file().bytes()) << "the log that was open has been closed";
    EXPECT_EQ(1, finContData());
    EXPECT_EQ(0, put("closed"));
}

} // namespace
} // namespace zebtest
