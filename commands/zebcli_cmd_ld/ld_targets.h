// What the LD commands share: their way of reading targets and of saying that there are none.
#pragma once

#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/model/raid_level.h"

#include <span>

/// The option table of an LD command: controllers, LDs and its own words, of which it needs one.
inline constexpr OptionTable ldOptions(std::span<const OptionWord> words = {}) {
    return {.source = kLdSource,
            .badToken = BadToken::Itself,
            .words = words,
            .needsWord = !words.empty(),
            .takesControllers = true,
            .takesLds = true};
}

/// LDs of one controller in ascending order.
struct SelectedLds {
    std::array<unsigned char, kMaxLds> ldNo;
    unsigned count;
    std::span<const unsigned char> list() const& { return std::span(ldNo).first(count); }
    std::span<const unsigned char> list() const&& = delete; // it would outlive its numbers
};

/// The LDs that the list names and that the controller has.
SelectedLds selectedLds(const LdList& listed, Controller ctrl);

/// Says that there is no such LD.
void sayNoLd(unsigned char contNo, int line = __builtin_LINE());

/// The RAID level as the tables and plans of creation and deletion show it: "CacheCade" for a CacheCade LD, "-" for a
/// level that is not known, which is traced.
const char* shownLevel(ZEB_RAID_LVL level, bool cacheCade, unsigned char contNo);

/// The number of drives of an LD over all its spans.
unsigned short driveCountOf(const _MR_LD_CONFIG& ld);

/// Whether the LD is the source or the repository of snapshots.
bool isSnapshotLd(const _MR_LD_INFO& ld);
