// The questions over arbitrary standard input: every kind, the one for a RAID group, and the whole dialogues of a
// deletion and of an easy creation.
//
// Input: kind, largest menu number, the LDs that are allowed (none when the first is 0), then what the operator types.
#include "commands/handlers.h"
#include "commands/zebcli_cmd_ld/creation/construction.h"
#include "fuzz/library.h"
#include "fuzz/support.h"
#include "main/zebcli_cmd_com/input/prompts.h"
#include "main/zebcli_cmd_com/input/targets.h"

#include <algorithm>
#include <cerrno>

namespace {

/// What was answered lies within what was asked.
void requireAnswer(int answer, unsigned char kind, unsigned char most, const LdList& chosen, const LdList* allowed) {
    fuzz::require(answer == 0 || answer == 1, "an answer is yes or no");
    const bool menu = kind >= kAskMenuFirst && kind <= kAskMenuLast;
    const bool lds = kind >= kAskLdListFirst && kind <= kAskLdListLast;
    if (menu && answer == 1)
        fuzz::require(most == 0 || (chosen[0] >= 1 && chosen[0] <= most), "a menu number is one of the menu");
    const auto permitted = [&](unsigned char ldNo) {
        return ldNo < chosen.size() &&
               (!allowed || std::find(allowed->begin(), allowed->end(), ldNo) != allowed->end());
    };
    const auto last = std::find(chosen.begin(), chosen.end(), kNoTarget);
    if (lds && answer == 1)
        fuzz::require(last != chosen.begin() && std::all_of(chosen.begin(), last, permitted), "a chosen LD is allowed");
    if (!menu && !lds && answer == 0)
        fuzz::require(errno == ECANCELED, "a refusal leaves ECANCELED");
}

void askForGroup() {
    static char words[][16] = {"zebcli", "-pdhsp", "-dhs", "-pd[:14]", "-a0"};
    static char* argv[] = {words[0], words[1], words[2], words[3], words[4], nullptr};
    fuzz::useLibrary(1);
    static fuzz::Snapshot snapshot(1);
    CliCmdExecPDHSP(static_cast<int>(std::size(words)), argv, snapshot.conts(), snapshot.count());
}

void deleteLds() {
    static char words[][16] = {"zebcli", "-lddel"};
    static char* argv[] = {words[0], words[1], nullptr};
    constexpr unsigned kControllers = 2;
    fuzz::useLibrary(kControllers);
    static fuzz::Snapshot snapshot(kControllers);
    CliCmdExecCfgLDDel(static_cast<int>(std::size(words)), argv, snapshot.conts(), snapshot.count());
}

/// Every drive of the controller looks unconfigured, of one kind, and every level can be built: the menus are long.
void createLds() {
    static constexpr std::uint8_t kAllFree[] = {0x02, 0x00, 0xFF, 0, 184, 0, 6, 0, 0, 0, 0, 0, 0, // state, DDF type
                                                0x02, 0x00, 0xFF, 0, 114, 1, 1, 0}; // media type
    static char words[][16] = {"zebcli", "-lde"};
    static char* argv[] = {words[0], words[1], nullptr};
    for (_configPat_T::Row& row : configPat.row)
        row = {4, {kRaid0, kRaid5, kRaid1, kRaid10}};
    fuzz::useLibrary(1, kAllFree);
    static fuzz::Snapshot snapshot(1);
    CliCmdExecCfgLDEasyMakeAdd(static_cast<int>(std::size(words)), argv, snapshot.conts(), snapshot.count());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const unsigned char kind = input.byte();
    const unsigned char most = input.byte();
    LdList chosen;
    chosen.fill(kNoTarget);
    LdList allowed;
    allowed.fill(kNoTarget);
    const fuzz::Bytes given = input.take(input.byte() % (allowed.size() + 1));
    std::copy(given.begin(), given.end(), allowed.begin());
    LdList* const among = given.empty() ? nullptr : &allowed;

    const fuzz::Bytes typed = input.rest();
    fuzz::typeAnswers(typed);
    unsigned char text[] = "0, 1";
    errno = 0;
    const int answer = ComChk(chosen.data(), among != nullptr ? among->data() : nullptr, text, kind, most);
    requireAnswer(answer, kind, most, chosen, among);
    askForGroup();
    fuzz::typeAnswers(typed);
    deleteLds();
    fuzz::typeAnswers(typed);
    createLds();
    return 0;
}
