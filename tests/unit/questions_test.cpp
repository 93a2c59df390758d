// Questions by kind: what each asks, which answers it takes, and what it makes of the end of the input.
#include "main/zebcli_cmd_com/input/dialogue.h"
#include "main/zebcli_cmd_com/input/prompts.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <iterator>
#include <string>
#include <vector>

#include <gtest/gtest.h>

namespace zebtest {
namespace {

/// Standard input holds that text.
void type(const std::string& text) {
    static std::FILE* file = nullptr;
    if (file != nullptr)
        std::fclose(file);
    file = std::tmpfile();
    std::fwrite(text.data(), 1, text.size(), file);
    std::rewind(file);
    stdin = file;
}

template <class Ask>
std::string shownBy(Ask ask) {
    testing::internal::CaptureStdout();
    ask();
    std::fflush(stdout);
    return testing::internal::GetCapturedStdout();
}

const std::string kProceed = "Proceed with the setting?(Y/N)?\n";
const std::string kGhs = "Warning - In case of selecting PD(Physical Drive) as GHS(Global Hot Spare) with ";
const std::string kRebuildIll = "Rebuild/Copyback might not be done correctly.\n" + kProceed;
const std::string kExecute = "Is it executed?(Y/N)?\n";
const std::string kCacheLost = "cached data may be lost.\n";

TEST(Questions, EachYesNoKindAsksItsOwn) {
    const struct {
        unsigned kind;
        std::string text;
    } cases[] = {
        {0, kExecute},
        {1,
         "Warning - Some PDs(Physical Drives) have different capacity.\nCreate the LD[s](Logical Drive[s])?(Y/N)?\n"},
        {2, "Warning - Changing to \"Always Write Back\" !\nWhen power failure occurs, " + kCacheLost +
                "Please hook up this RAID system to UPS.\n" + kProceed},
        {3, "Warning - Changing to \"Always Write Back\"!\nWhen Cache Backup capacity is not enough, " + kCacheLost +
                "\"Write Back with Cache Backup\" is better.\n" + kProceed},
        {4, "All data on the LD[s](Logical Drive[s]) will be lost.(Y/N)?\n"},
        {5, "Proceed with delete?(Y/N)?\n"},
        {6,
         "Warning - In case of disabling Automatic Patrol Read, cannot keep PDs(Physical Drives) safe.\n" + kProceed},
        {7, "Warning - Changing to Always Write Back !\nWhen Cache Backup capacity is not enough, " + kCacheLost +
                "\"Write Back with Cache Backup\" is better.\n" + kProceed},
        {8, "Warning - Changing to Always Write Back !\nWhen power failure occurs, " + kCacheLost +
                "Please hook up this RAID system to UPS.\n" + kProceed},
        {9, "Information - RAID log already exists.\nDoes it overwrite?(Y/N)?\n"},
        {10, kGhs + "different Interface Type(SAS/SATA) configured PD(Physical Drive), " + kRebuildIll},
        {11, kGhs + "different Media Type(HDD/SSD) configured PD(Physical Drive), " + kRebuildIll},
        {12, kGhs + "lower capacity than other configured PDs(Physical Drives), " + kRebuildIll},
        {13, "LD[s](Logical Drive[s]) exists.\nRelease the allocation?(Y/N)?\n"},
        {14, "Proceed with enabling Snapshot?(Y/N)?\n"},
        {15, "Proceed with disabling Snapshot?(Y/N)?\n"},
        {16, "Warning - The oldest Snapshot will be updated.\nProceed with the creation?(Y/N)?\n"},
        {17, "Warning - All data on the oldest Snapshot will be lost.\nProceed with the delete?(Y/N)?\n"},
        {23, "Warning - Some PD[s] (Physical Drive[s]) have different capacity.\n"
             "Create the CacheCade LD (Logical Drive)?(Y/N?)\n"},
        {24, "Information - CacheCade LD[s](Logical Drive[s]) doesn't need Initialization.\n"
             "Use the following LD[s] as Associated CacheCade LD?(Y/N)?\n\nLD:LD0, 7"},
        {25,
         "Warning - In case of disabling Automatic Rebuild, the rebuild after error doesn't automatically start.\n" +
             kProceed},
        {26, kExecute},
        {99, kExecute},
        {255, kExecute},
    };
    unsigned char lds[] = "0, 7";
    for (const auto& c : cases) {
        SCOPED_TRACE(c.kind);
        const struct {
            const char* typed;
            unsigned questions;
            int answer;
        } answers[] = {{"y\n", 1, 1}, {"Y\n", 1, 1}, {"N\n", 1, 0}, {"n\n", 1, 0}, {"yes\n\nQ\ny\r\n1\nn\n", 6, 0}};
        for (const auto& a : answers) {
            type(a.typed);
            errno = 0;
            int answer = -1;
            const std::string shown =
                shownBy([&] { answer = ComChk(nullptr, nullptr, lds, static_cast<unsigned char>(c.kind), 0); });
            EXPECT_EQ(a.answer, answer) << a.typed;
            EXPECT_TRUE(answer == 1 || errno == ECANCELED);
            std::string wanted;
            for (unsigned i = 0; i < a.questions; ++i)
                wanted += c.text;
            EXPECT_EQ(wanted, shown) << a.typed;
        }
    }
}

/// What a prompt is answered with, the answers that it refuses before included.
struct Prompted {
    unsigned kind;
    unsigned rows; ///< of a menu
    std::string typed;
    std::vector<std::string> invalid;
    std::vector<unsigned> chosen; ///< nothing: the operator quits
};

TEST(Questions, MenusTakeARowAndListsTakeLds) {
    const std::vector<Prompted> cases = {
        {18, 3, "3\n", {}, {3}},
        {19, 3, "1", {}, {1}},
        {20, 255, "255\r\n", {}, {255}},
        {18, 0, "255\n", {}, {255}},
        {18, 3, "q\n", {}, {}},
        {18, 3, "Q", {}, {}},
        {18, 3, "", {}, {}},
        {18,
         3,
         "0\n4\n01\n 1\n1 \n+1\n1,2\nQuit\n\n256\n2\n",
         {"0", "4", "01", " 1", "1 ", "+1", "1,2", "Quit", "", "256"},
         {2}},
        {20, 255, "256\n1000\n", {"256", "1000"}, {}},
        {21, 0, "7\n", {}, {7}},
        {22, 0, "63,0,5\r\n", {}, {63, 0, 5}},
        {21,
         0,
         "0,0\n64\n7,\n,7\n 1\nall\n00\n005\n1,2\n\n6\n5,7",
         {"0,0", "64", "7,", ",7", " 1", "all", "00", "005", "1,2", "", "6"},
         {5, 7}},
        {22, 0, "q\n", {}, {}},
        {21, 0, "8\n", {"8"}, {}},
        {22, 0, "", {}, {}},
    };
    for (const auto& c : cases) {
        SCOPED_TRACE(testing::Message() << c.kind << " " << c.typed);
        LdList allowed;
        allowed.fill(kNoTarget);
        const unsigned char named[] = {0, 5, 7, 63};
        std::copy(std::begin(named), std::end(named), allowed.begin());
        LdList chosen;
        chosen.fill(99);
        type(c.typed);
        int answer = -1;
        const std::string shown = shownBy([&] {
            answer = ComChk(chosen.data(), allowed.data(), nullptr, static_cast<unsigned char>(c.kind),
                            static_cast<unsigned char>(c.rows));
        });
        const std::string prompt = c.kind <= 20 ? "Please input number or Q :" : "Please input LD number or Q :";
        std::string wanted = prompt;
        for (const std::string& text : c.invalid)
            wanted += "\"" + text + "\" is invalid.\n" + prompt;
        EXPECT_EQ(wanted, shown);
        EXPECT_EQ(c.chosen.empty() ? 0 : 1, answer);
        for (std::size_t i = 0; i < chosen.size(); ++i) {
            const bool list = c.kind > 20 && answer == 1;
            EXPECT_EQ(i < c.chosen.size() ? c.chosen[i] : list ? kNoTarget : 99U, chosen[i]) << i;
        }
    }
    type("63,12\n");
    LdList chosen;
    shownBy([&] { EXPECT_EQ(1, ComChk(chosen.data(), nullptr, nullptr, 21, 0)) << "all 64 may be named"; });
    EXPECT_EQ(12, chosen[1]);
}

TEST(Questions, AChoiceTakesOneOfTheOfferedNumbers) {
    const unsigned char offered[] = {0, 2, 255};
    const struct {
        std::string typed;
        AtEndOfInput atEnd;
        std::vector<std::string> shown; ///< behind the prompt each time
        int chosen; ///< -1: the operator quits
    } cases[] = {
        {"0\n", AtEndOfInput::Quits, {""}, 0},
        {"255", AtEndOfInput::AsksAgain, {""}, 255},
        {"2\r\n", AtEndOfInput::Quits, {""}, 2},
        {"1\n00\n2550\n\n-1\n2\n",
         AtEndOfInput::AsksAgain,
         {"\"1\" is invalid.\n", "\"00\" is invalid.\n", "\"2550\" is invalid.\n", "\"\" is invalid.\n",
          "\"-1\" is invalid.\n", ""},
         2},
        {"Quit\nQui\n", AtEndOfInput::Quits, {"\"Quit\" is invalid.\n", ""}, -1},
        {"q\n", AtEndOfInput::AsksAgain, {""}, -1},
        {"", AtEndOfInput::Quits, {""}, -1},
        {"x\n", AtEndOfInput::Quits, {"\"x\" is invalid.\n", ""}, -1},
    };
    for (const auto& c : cases) {
        type(c.typed);
        std::string wanted;
        for (const std::string& text : c.shown)
            wanted += "No. :" + text;
        int chosen = -2;
        EXPECT_EQ(wanted, shownBy([&] {
                      const auto number = chooseNumber("No. :", offered, c.atEnd);
                      chosen = number ? *number : -1;
                  }));
        EXPECT_EQ(c.chosen, chosen) << c.typed;
    }
}

TEST(Questions, PausesAtTheEndOfTheInputGrow) {
    const std::pair<unsigned, unsigned> cases[] = {{1, 100},    {20, 100},   {21, 200},   {22, 400},
                                                   {29, 51200}, {30, 60000}, {31, 60000}, {4000000000U, 60000}};
    for (const auto& [ends, pause] : cases)
        EXPECT_EQ(pause, endOfInputPause(ends).count()) << ends;
}

} // namespace
} // namespace zebtest
