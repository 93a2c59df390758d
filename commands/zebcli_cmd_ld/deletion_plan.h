// What is to be deleted: the LDs as the operator is shown them, and what becomes free with them.
#pragma once

#include "main/zebcli_cmd_com/model/raid_level.h"
#include "main/zebcli_cmd_com/model/snapshot.h"
#include "storelib/common/StoreLib/controller.h"

#include <array>
#include <cstdint>
#include <span>

/// An LD as it is shown. A copy: it outlives the snapshot that it was taken from, so that it can be held against the
/// next one.
struct ShownLd {
    struct Span {
        std::uint16_t arrayRef;
        std::uint64_t startBlock;
        bool operator==(const Span&) const = default;
    };

    unsigned char ldNo;
    char name[sizeof _MR_LD_PROPERTIES::name + 1];
    ZEB_RAID_LVL level;
    bool cacheCade;
    std::uint64_t capacity; ///< blocks
    Span span[kMaxSpans]; ///< those behind the last are zero
    char osDevice[kOsDriveNameSize]; ///< "-" where the operating system knows none

    bool operator==(const ShownLd&) const = default;
};

/// The LD of the snapshot, and its name with the operating system, for which the library is asked.
ShownLd showLd(Controller ctrl, unsigned char ldNo);

/// LDs in ascending order.
struct ShownLds {
    std::array<ShownLd, kMaxLds> ld;
    unsigned count = 0;
    std::span<const ShownLd> list() const& { return std::span(ld).first(count); }
    std::span<const ShownLd> list() const&& = delete; // it would outlive its LDs
};

/// All LDs of the controller.
ShownLds showLds(Controller ctrl);

void printLdTable(Controller ctrl, const ShownLds& lds);

/// Says what will be deleted, and which groups and dedicated spares become free.
void sayDeletionPlan(Controller ctrl, const ShownLds& chosen);
