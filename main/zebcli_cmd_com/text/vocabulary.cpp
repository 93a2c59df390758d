#include "main/zebcli_cmd_com/text/vocabulary.h"

#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/model/lookup.h"

#include <algorithm>
#include <array>
#include <string_view>

namespace {

constexpr char kUnknown[] = "UNKNOWN";
constexpr unsigned kProgressFull = 65535;

struct StateWord {
    std::uint16_t code;
    const char* text;
};

constexpr auto HddStsMsg = std::to_array<StateWord>({
    {kPdUnconfiguredGood, "Unconfig GOOD"},
    {kPdUnconfiguredBad, "Unconfig BAD"},
    {kPdHotSpare, "HOT SPARE"},
    {kPdOffline, "OFFLINE"},
    {kPdFailed, "FAILED"},
    {kPdRebuild, "REBUILD"},
    {kPdCopyback, "COPYBACK"},
    {kPdOnline, "ONLINE"},
});

constexpr auto LdStsMsg = std::to_array<StateWord>({
    {kLdOptimal, "OPTIMAL"},
    {kLdDegraded, "DEGRADED"},
    {kLdPartiallyDegraded, "PARTIALLY DEGRADED"},
    {kLdOffline, "OFFLINE"},
});

const char* stateWord(std::span<const StateWord> words, unsigned code) {
    const auto row = std::find_if(words.begin(), words.end(), [&](const StateWord& word) { return word.code == code; });
    return row != words.end() ? row->text : kUnknown;
}

void setText(std::span<char> out, const char* text) {
    strcpy_s(out.data(), out.size(), text);
}

unsigned percentOf(const _MR_PROGRESS& progress) {
    return progress.progress * 100U / kProgressFull;
}

} // namespace

const char* wordOf(std::span<const char* const> words, unsigned code, const char* otherwise) {
    return code < words.size() ? words[code] : otherwise;
}

void mkPDStateStr(unsigned short state, std::span<char> out) {
    setText(out, stateWord(HddStsMsg, state));
}

void mkLDStateStr(unsigned char contNo, const _AFCONT* conts, const _MR_LD_CONFIG* ld, std::span<char> out) {
    setText(out, stateWord(LdStsMsg, ld->state));
    const PdsInLd pds = pdsInLd({contNo, conts}, ld->properties.ref.targetId);
    for (const unsigned char slotNo : pds.list()) {
        const bool copiesBack = HddIsDuringCopyBack(contNo, slotNo, conts) != 0;
        if (!copiesBack && conts[contNo].pdInfo[slotNo].fwState != kPdRebuild)
            continue;
        char suffix[32];
        wsprintf(suffix, "(%s)", stateWord(HddStsMsg, copiesBack ? kPdCopyback : kPdRebuild));
        strcat_s(out.data(), out.size(), suffix);
        return;
    }
}

void mkMediaTypeStr(const _MR_PD_INFO* pd, std::span<char> out) {
    static constexpr const char* kWords[] = {"HDD", "SSD"};
    setText(out, wordOf(kWords, mediaOf(*pd), "Not defined"));
}

void FormatSASAddress(unsigned long long address, std::span<char> out) {
    sprintf_s(out.data(), out.size(), "0x%.8X%.8X", static_cast<unsigned>(address >> 32U),
              static_cast<unsigned>(address));
}

void mkLDProgressStr(const _MR_LD_PROGRESS* progress, std::span<char> out) {
    struct Work {
        std::uint32_t bit;
        const char* word;
        const _MR_PROGRESS* amount;
    };
    const Work works[] = {
        {kLdProgInit, "Initialization", &progress->init},
        {kLdProgCheck, "Consistency Check", &progress->cc},
        {kLdProgBgi, "Background Init", &progress->bgi},
        {kLdProgRecon, "Reconstruction", &progress->recon},
    };
    setText(out, kNone);
    for (const Work& work : works)
        if ((progress->active & work.bit) != 0) {
            sprintf_s(out.data(), out.size(), "%s %u%%", work.word, percentOf(*work.amount));
            return;
        }
}

void mkPDProgressStr(const _MR_PD_PROGRESS* progress, std::span<char> out) {
    // The place of the percentage before "PatrolRead", and the rebuild figure of a copyback, are deliberate.
    if ((progress->active & kPdProgPatrolRead) != 0)
        sprintf_s(out.data(), out.size(), "%u%% PatrolRead", percentOf(progress->patrolRead));
    else if ((progress->active & kPdProgCopyback) != 0)
        sprintf_s(out.data(), out.size(), "Copyback %u%%", percentOf(progress->rebuild));
    else if ((progress->active & kPdProgRebuild) != 0)
        sprintf_s(out.data(), out.size(), "Rebuild %u%%", percentOf(progress->rebuild));
    else
        setText(out, kNone);
}

void mkLDErrInfoStr(unsigned char contNo, const _AFCONT* conts, unsigned char ldNo, std::span<char> out) {
    bool mediaErrors = false;
    bool predictedFailures = false;
    const PdsInLd pds = pdsInLd({contNo, conts}, ldNo);
    for (const unsigned char slotNo : pds.list()) {
        const _MR_PD_INFO& pd = conts[contNo].pdInfo[slotNo];
        mediaErrors = mediaErrors || pd.mediaErrorCount != 0;
        predictedFailures = predictedFailures || pd.predFailCount != 0;
    }
    if (!mediaErrors && !predictedFailures)
        setText(out, kNone);
    else
        sprintf_s(out.data(), out.size(), "%s%s%s", mediaErrors ? "MediaErr" : "",
                  mediaErrors && predictedFailures ? "," : "", predictedFailures ? "PredFail" : "");
}
