#include "main/zebcli_cmd_com/input/prompts.h"

#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/input/dialogue.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <optional>
#include <string_view>

namespace {

struct Question {
    QuestionKind kind;
    const char* text;
};

// The yes/no questions with a fixed text. The small differences between kinds 2 and 8, 3 and 7, and the bracket of kind
// 23, are part of the texts.
constexpr auto kQuestions = std::to_array<Question>({
    {kAskExecute, "Is it executed?(Y/N)?"},
    {kAskCreateDifferentSizes,
     "Warning - Some PDs(Physical Drives) have different capacity.\nCreate the LD[s](Logical Drive[s])?(Y/N)?"},
    {kAskCreateWriteBackWithoutBackup,
     "Warning - Changing to \"Always Write Back\" !\nWhen power failure occurs, cached data may be lost.\nPlease hook "
     "up this RAID system to UPS.\nProceed with the setting?(Y/N)?"},
    {kAskCreateWriteBackWithBackup,
     "Warning - Changing to \"Always Write Back\"!\nWhen Cache Backup capacity is not enough, cached data may be "
     "lost.\n\"Write Back with Cache Backup\" is better.\nProceed with the setting?(Y/N)?"},
    {kAskLoseData, "All data on the LD[s](Logical Drive[s]) will be lost.(Y/N)?"},
    {kAskDelete, "Proceed with delete?(Y/N)?"},
    {kAskDisablePatrolRead, "Warning - In case of disabling Automatic Patrol Read, cannot keep PDs(Physical Drives) "
                            "safe.\nProceed with the setting?(Y/N)?"},
    {kAskWriteBackWithBackup,
     "Warning - Changing to Always Write Back !\nWhen Cache Backup capacity is not enough, cached data may be "
     "lost.\n\"Write Back with Cache Backup\" is better.\nProceed with the setting?(Y/N)?"},
    {kAskWriteBackWithoutBackup,
     "Warning - Changing to Always Write Back !\nWhen power failure occurs, cached data may be lost.\nPlease hook up "
     "this RAID system to UPS.\nProceed with the setting?(Y/N)?"},
    {kAskOverwriteLog, "Information - RAID log already exists.\nDoes it overwrite?(Y/N)?"},
    {kAskGhsInterface, "Warning - In case of selecting PD(Physical Drive) as GHS(Global Hot Spare) with different "
                       "Interface Type(SAS/SATA) configured PD(Physical Drive), Rebuild/Copyback might not be done "
                       "correctly.\nProceed with the setting?(Y/N)?"},
    {kAskGhsMedia,
     "Warning - In case of selecting PD(Physical Drive) as GHS(Global Hot Spare) with different Media Type(HDD/SSD) "
     "configured PD(Physical Drive), Rebuild/Copyback might not be done correctly.\nProceed with the setting?(Y/N)?"},
    {kAskGhsCapacity,
     "Warning - In case of selecting PD(Physical Drive) as GHS(Global Hot Spare) with lower capacity than other "
     "configured PDs(Physical Drives), Rebuild/Copyback might not be done correctly.\nProceed with the setting?(Y/N)?"},
    {kAskReleaseSpare, "LD[s](Logical Drive[s]) exists.\nRelease the allocation?(Y/N)?"},
    {kAskEnableSnapshot, "Proceed with enabling Snapshot?(Y/N)?"},
    {kAskDisableSnapshot, "Proceed with disabling Snapshot?(Y/N)?"},
    {kAskUpdateOldestSnapshot, "Warning - The oldest Snapshot will be updated.\nProceed with the creation?(Y/N)?"},
    {kAskDeleteOldestSnapshot,
     "Warning - All data on the oldest Snapshot will be lost.\nProceed with the delete?(Y/N)?"},
    {kAskCreateCacheCadeDifferentSizes, "Warning - Some PD[s] (Physical Drive[s]) have different capacity.\nCreate the "
                                        "CacheCade LD (Logical Drive)?(Y/N?)"},
    {kAskDisableAutoRebuild, "Warning - In case of disabling Automatic Rebuild, the rebuild after error doesn't "
                             "automatically start.\nProceed with the setting?(Y/N)?"},
});

constexpr char kAssociation[] = "Information - CacheCade LD[s](Logical Drive[s]) doesn't need Initialization.\n"
                                "Use the following LD[s] as Associated CacheCade LD?(Y/N)?\n\nLD:LD%s";

void printQuestion(unsigned char kind, const unsigned char* text) {
    if (kind == kAskAssociateCacheCade) {
        std::printf(kAssociation, text != nullptr ? reinterpret_cast<const char*>(text) : "");
        return;
    }
    const auto* row =
        std::find_if(kQuestions.begin(), kQuestions.end(), [&](const Question& q) { return q.kind == kind; });
    CliLogging(kPrint, kComSource, __LINE__, "%s", row != kQuestions.end() ? row->text : kQuestions.front().text);
}

int askYesNo(unsigned char kind, const unsigned char* text) {
    Answer answer;
    while (true) {
        printQuestion(kind, text);
        answer.read();
        const std::string_view line(answer.line());
        if (line == "Y\n" || line == "y\n")
            return 1;
        if (line == "N\n" || line == "n\n" || !answer.seen()) {
            errno = ECANCELED;
            return 0;
        }
        answer.pauseAtEnd();
    }
}

int askMenu(unsigned char rows, unsigned char* chosen) {
    const auto number = askMenuNumber(rows);
    if (number && chosen != nullptr)
        chosen[0] = *number;
    return number ? 1 : 0;
}

int askLds(const unsigned char* allowed, unsigned char* chosen) {
    const auto list = askLdList(allowed);
    if (list && chosen != nullptr)
        std::copy(list->begin(), list->end(), chosen);
    return list ? 1 : 0;
}

} // namespace

int ComChk(unsigned char* chosen, unsigned char* allowed, unsigned char* text, unsigned char kind, unsigned char rows) {
    dumpLog(kComSource, __LINE__, __func__);
    if (kind >= kAskMenuFirst && kind <= kAskMenuLast)
        return askMenu(rows, chosen);
    if (kind >= kAskLdListFirst && kind <= kAskLdListLast)
        return askLds(allowed, chosen);
    return askYesNo(kind, text);
}

bool confirmed(QuestionKind kind) {
    return ComChk(nullptr, nullptr, nullptr, kind, 0) == 1;
}
