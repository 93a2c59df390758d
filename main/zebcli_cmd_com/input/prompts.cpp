#include "main/zebcli_cmd_com/input/prompts.h"

#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/input/targets.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <poll.h>
#include <string_view>
#include <unistd.h>

int term_set_flg = 0;
termios old_term_set{};
termios new_term_set{};

namespace {

using Answer = std::array<char, kAnswerSize>;

constexpr char kDefaultQuestion[] = "Is it executed?(Y/N)?";
constexpr char kMenuQuestion[] = "Please input number or Q :";
constexpr char kLdListQuestion[] = "Please input LD number or Q :";
constexpr useconds_t kEndOfInputPause = 100000;
constexpr unsigned kLongestLine = 1U << 20U;
constexpr unsigned kHighestMenuNumber = 255;

// Question texts by kind; an empty one is no yes/no kind with a fixed text. The small differences between kinds 2 and
// 8, 3 and 7, and the bracket of kind 23, are part of the texts.
constexpr auto kQuestions = std::to_array<const char*>({
    kDefaultQuestion,
    "Warning - Some PDs(Physical Drives) have different capacity.\nCreate the LD[s](Logical Drive[s])?(Y/N)?",
    "Warning - Changing to \"Always Write Back\" !\nWhen power failure occurs, cached data may be lost.\n"
    "Please hook up this RAID system to UPS.\nProceed with the setting?(Y/N)?",
    "Warning - Changing to \"Always Write Back\"!\nWhen Cache Backup capacity is not enough, cached data may be lost.\n"
    "\"Write Back with Cache Backup\" is better.\nProceed with the setting?(Y/N)?",
    "All data on the LD[s](Logical Drive[s]) will be lost.(Y/N)?",
    "Proceed with delete?(Y/N)?",
    "Warning - In case of disabling Automatic Patrol Read, cannot keep PDs(Physical Drives) safe.\n"
    "Proceed with the setting?(Y/N)?",
    "Warning - Changing to Always Write Back !\nWhen Cache Backup capacity is not enough, cached data may be lost.\n"
    "\"Write Back with Cache Backup\" is better.\nProceed with the setting?(Y/N)?",
    "Warning - Changing to Always Write Back !\nWhen power failure occurs, cached data may be lost.\n"
    "Please hook up this RAID system to UPS.\nProceed with the setting?(Y/N)?",
    "Information - RAID log already exists.\nDoes it overwrite?(Y/N)?",
    "Warning - In case of selecting PD(Physical Drive) as GHS(Global Hot Spare) with different Interface "
    "Type(SAS/SATA) "
    "configured PD(Physical Drive), Rebuild/Copyback might not be done correctly.\nProceed with the setting?(Y/N)?",
    "Warning - In case of selecting PD(Physical Drive) as GHS(Global Hot Spare) with different Media Type(HDD/SSD) "
    "configured PD(Physical Drive), Rebuild/Copyback might not be done correctly.\nProceed with the setting?(Y/N)?",
    "Warning - In case of selecting PD(Physical Drive) as GHS(Global Hot Spare) with lower capacity than other "
    "configured PDs(Physical Drives), Rebuild/Copyback might not be done correctly.\nProceed with the setting?(Y/N)?",
    "LD[s](Logical Drive[s]) exists.\nRelease the allocation?(Y/N)?",
    "Proceed with enabling Snapshot?(Y/N)?",
    "Proceed with disabling Snapshot?(Y/N)?",
    "Warning - The oldest Snapshot will be updated.\nProceed with the creation?(Y/N)?",
    "Warning - All data on the oldest Snapshot will be lost.\nProceed with the delete?(Y/N)?",
    "",
    "",
    "",
    "",
    "",
    "Warning - Some PD[s] (Physical Drive[s]) have different capacity.\n"
    "Create the CacheCade LD (Logical Drive)?(Y/N?)",
    "",
    "Warning - In case of disabling Automatic Rebuild, the rebuild after error doesn't automatically start.\n"
    "Proceed with the setting?(Y/N)?",
});
static_assert(kQuestions.size() == kAskDisableAutoRebuild + 1);

/// Puts a changed copy of the terminal's current mode in force; the current one lands in old_term_set.
template <class Change>
void changeTerminalMode(Change change) {
    tcgetattr(STDIN_FILENO, &old_term_set);
    new_term_set = old_term_set;
    change(new_term_set.c_lflag);
    tcsetattr(STDIN_FILENO, TCSANOW, &new_term_set);
}

void printQuestion(unsigned char kind, const unsigned char* text) {
    if (kind == kAskAssociateCacheCade) {
        std::printf("Information - CacheCade LD[s](Logical Drive[s]) doesn't need Initialization.\n"
                    "Use the following LD[s] as Associated CacheCade LD?(Y/N)?\n\nLD:LD%s",
                    text != nullptr ? reinterpret_cast<const char*>(text) : "");
        return;
    }
    const char* question = kind < kQuestions.size() ? kQuestions[kind] : kDefaultQuestion;
    CliLogging(kPrint, kComSource, __LINE__, "%s", question);
}

/// The next byte of standard input, waited for even where another program left it in a mode that does not wait.
int nextByte() {
    while (true) {
        const int c = std::fgetc(stdin);
        if (c != EOF || std::feof(stdin) != 0 || errno != EAGAIN)
            return c;
        std::clearerr(stdin);
        pollfd input{STDIN_FILENO, POLLIN, 0};
        poll(&input, 1, -1);
    }
}

/// Reads a line. Of one that is too long the rest is dropped, so that its end is not taken for the answer to the
/// question asked again; one that has no end counts as the end of the input.
bool readLine(std::span<char, kAnswerSize> answer) {
    std::size_t length = 0;
    unsigned dropped = 0;
    for (int c = 0; c != '\n' && dropped < kLongestLine;) {
        c = nextByte();
        if (c == EOF)
            break;
        if (length < answer.size() - 1)
            answer[length++] = static_cast<char>(c);
        else
            ++dropped;
    }
    answer[length] = '\0';
    return length > 0 && dropped < kLongestLine;
}

int askYesNo(unsigned char kind, const unsigned char* text, Answer& answer) {
    while (true) {
        printQuestion(kind, text);
        const bool goOn = readAnswer(answer);
        const std::string_view line(answer.data());
        if (line == "Y\n" || line == "y\n")
            return 1;
        if (line == "N\n" || line == "n\n" || !goOn) {
            errno = ECANCELED;
            return 0;
        }
    }
}

/// A number of one to three digits; false for anything else.
bool readNumber(std::string_view text, unsigned& number) {
    number = 0;
    if (text.empty() || text.size() > 3)
        return false;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return false;
        number = number * 10 + static_cast<unsigned>(c - '0');
    }
    return true;
}

bool takeMenuNumber(std::string_view text, unsigned char* a, unsigned char c) {
    unsigned number = 0;
    if (!readNumber(text, number) || number > kHighestMenuNumber || (c != 0 && (number == 0 || number > c)))
        return false;
    if (a != nullptr)
        a[0] = static_cast<unsigned char>(number);
    return true;
}

bool takeLdList(std::string_view text, unsigned char* a, const unsigned char* allowed) {
    LdList list;
    list.fill(kNoTarget);
    for (std::size_t stored = 0;; ++stored) {
        const std::string_view item = text.substr(0, text.find(','));
        unsigned number = 0;
        if (!readNumber(item, number) || number >= list.size() || stored == list.size())
            return false;
        const auto ldNo = static_cast<unsigned char>(number);
        if (std::find(list.begin(), list.end(), ldNo) != list.end())
            return false;
        if (allowed != nullptr && std::find(allowed, allowed + list.size(), ldNo) == allowed + list.size())
            return false;
        list[stored] = ldNo;
        if (item.size() == text.size())
            break;
        text.remove_prefix(item.size() + 1);
    }
    if (a != nullptr)
        std::copy(list.begin(), list.end(), a);
    return true;
}

int askNumbers(unsigned char* a, const unsigned char* b, unsigned char kind, unsigned char c, Answer& answer) {
    const bool menu = kind <= kAskMenuLast;
    while (true) {
        std::fputs(menu ? kMenuQuestion : kLdListQuestion, stdout);
        const bool goOn = readAnswer(answer);
        std::string_view text(answer.data());
        text = text.substr(0, text.find('\n'));
        if (text == "Q" || text == "q")
            return 0;
        if (menu ? takeMenuNumber(text, a, c) : takeLdList(text, a, b))
            return 1;
        if (!goOn)
            return 0;
        std::printf("\"%.*s\" is invalid.\n", static_cast<int>(text.size()), text.data());
    }
}

} // namespace

bool readAnswer(std::span<char, kAnswerSize> answer) {
    const bool shown = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    changeTerminalMode([](tcflag_t& flags) { flags |= ECHO; });
    answer.front() = '\0';
    const bool read = readLine(answer);
    changeTerminalMode([](tcflag_t& flags) { flags &= ~static_cast<tcflag_t>(ECHO | ISIG); });
    if (!read) {
        answer.front() = '\0';
        std::clearerr(stdin);
        usleep(kEndOfInputPause);
    }
    return shown;
}

int ComChk(unsigned char* a, unsigned char* b, unsigned char* text, unsigned char kind, unsigned char c) {
    dumpLog(kComSource, __LINE__, __func__);
    static Answer answer;
    if (kind >= kAskMenuFirst && kind <= kAskLdListLast)
        return askNumbers(a, b, kind, c, answer);
    return askYesNo(kind, text, answer);
}
