// What is told to the operator: levels, the second formatting, and reports that are longer than their buffer.
#include <gtest/gtest.h>

#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/text/report.h"
#include "tests/support/temp_log.h"

namespace zebtest {
namespace {

template <class Work>
std::string printed(Work work) {
    testing::internal::CaptureStdout();
    work();
    return testing::internal::GetCapturedStdout();
}

TEST(UnitMessage, SecondFormattingTakesNoArguments) {
    const std::pair<std::string, const char*> cases[] = {{"", ""},
                                                         {"plain", "plain"},
                                                         {"50%%", "50%"},
                                                         {"%", "%"},
                                                         {"a%", "a%"},
                                                         {"%%%", "%%"},
                                                         {"%%%%", "%%"},
                                                         {"%s %n %d %%n", "%s %n %d %n"},
                                                         {"%1$s%-5.3lld%%", "%1$s%-5.3lld%"}};
    for (const auto& [text, wanted] : cases) {
        char out[64];
        EXPECT_EQ(std::string(wanted).size(), expandFormat(text.c_str(), out, sizeof out)) << text;
        EXPECT_STREQ(wanted, out);
    }
    for (std::size_t size = 0; size < 8; ++size) {
        char out[8] = {'?', '?', '?', '?', '?', '?', '?', '?'};
        const std::size_t length = expandFormat("ab%%cd%%", out, size);
        EXPECT_EQ(std::min<std::size_t>(size == 0 ? 0 : size - 1, 6), length) << size;
        EXPECT_EQ(std::string("ab%cd%").substr(0, length), std::string(out, length)) << size;
        EXPECT_TRUE(size == 0 || out[length] == '\0') << size;
        EXPECT_EQ('?', out[size]) << size;
    }
}

TEST(UnitMessage, LevelSaysWhereAMessageGoes) {
    const TempLog log;
    const struct {
        unsigned char level;
        bool printed, logged;
    } cases[] = {{0, true, false}, {1, true, true}, {2, false, false}, {3, false, true}};
    for (const auto& c : cases) {
        EXPECT_EQ(c.printed ? "5% of %n\n" : "", printed([&] { CliLogging(c.level, "u", 1, "%d%s", 5, "%% of %n"); }));
        EXPECT_EQ(c.logged ? "5%% of %n\n" : "", log.take()) << "what is logged is formatted once";
    }
    for (const std::size_t length : {9997U, 9998U, 9999U, 30000U}) {
        const std::string text(length, 'x');
        EXPECT_EQ(text.substr(0, 9998) + "\n", printed([&] { CliLogging(kPrint, "u", 1, "%s", text.c_str()); }));
    }
    finContData();
    EXPECT_EQ("x\n", printed([] { CliLogging(kPrintAndLog, "u", 1, "x"); })) << "without a log";
}

TEST(UnitMessage, TraceAndHistoryAreCut) {
    const TempLog log;
    const std::string text(148, 'x');
    for (const char* end : {"y", "yz"}) {
        Utillogging("u", 1, "!ERR ", "%s%s", text.c_str(), end);
        EXPECT_EQ("!ERR " + text + "y\n", log.take()) << "149 characters and a NUL";
    }
    std::string words[] = {"zebcli", "", std::string(20000, 'w')};
    char* argv[] = {words[0].data(), words[1].data(), words[2].data()};
    HistoryLog(3, argv);
    EXPECT_TRUE(log.take().starts_with("zebcli  " + std::string(100, 'w')));
}

TEST(UnitMessage, ReportWritesFieldsAndPairsOfPercents) {
    const auto written = printed([] {
        Report report;
        report.controller(3);
        report.heading("General");
        report.field("Serial No", "%s", "x");
        report.fieldAt(Report::kWideColumn, "Number of Fans", "%d of %u%%, %04X", -7, 4000000000U, 0x1AU);
        report.label("Last");
        report.add("%s%s", "100%", "%");
        report.emit();
    });
    EXPECT_EQ("RAID Controller: 3\r\n\r\n### General ###\r\nSerial No                : x\r\n"
              "Number of Fans                : -7 of 4000000000%, 001A\r\nLast                     : 100%\n",
              written);
    // A pair that the end of the buffer parts is still printed as one.
    for (const unsigned before : {9996U, 9997U, 9998U}) {
        const std::string text(before, 'x');
        EXPECT_EQ(text + "%y\n", printed([&] {
                      Report report;
                      for (const char* part : {text.c_str(), "%", "%", "y"})
                          report.add("%s", part);
                      report.emit();
                  }))
            << before;
    }
}

TEST(UnitMessage, ReportLosesNoLine) {
    for (const unsigned width : {1U, 40U, 4999U, 9997U}) {
        std::string wanted;
        const std::string got = printed([&] {
            Report report;
            for (unsigned i = 0; i < 60000 / width; ++i) {
                const std::string line(width, static_cast<char>('a' + i % 26));
                report.add("%s\n", line.c_str());
                wanted += line + "\n";
            }
            report.emit();
            report.emit(); // nothing is left
        });
        EXPECT_TRUE(sameText(got, wanted + "\n")) << width << ": pieces without a newline between them";
    }
    const std::string longest(20000, 'x');
    EXPECT_EQ("1\n" + longest.substr(0, 9998) + "2\n\n", printed([&] {
                  Report report;
                  report.add("1\n");
                  report.add("%s", longest.c_str());
                  report.add("2\n");
                  report.emit();
              }));
}

} // namespace
} // namespace zebtest
