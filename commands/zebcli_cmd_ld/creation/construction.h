// RAID construction rules: which levels can be built from how many drives, in which order they are offered, the
// defaults and the capacity of a planned LD. Sizes are blocks of 512 bytes.
#pragma once

#include "main/zebcli_cmd_com/model/capacity.h"
#include "main/zebcli_cmd_com/model/snapshot.h"
#include "storelib/common/StoreLib/configuration_write.h"

#include <array>
#include <cstdint>
#include <cstdio>
#include <span>

inline constexpr char kPatternPath[] = "/opt/quorvel/zeb/confpat1.csv";
inline constexpr unsigned kPatternRows = 256;
inline constexpr unsigned kPatternLevels = 4;

/// The levels that may be built from each number of drives; row n - 1 is about n drives.
struct _configPat_T {
    struct Row {
        std::uint8_t count;
        ZEB_RAID_LVL level[kPatternLevels];
    };
    Row row[kPatternRows];
};
extern _configPat_T configPat;

/// Candidate levels in the order in which they are offered.
struct _raidConstructInfoT {
    std::uint8_t count;
    ZEB_RAID_LVL level[kRaidLevels];
};

/// The drives that are in no LD and no spare, by slot number; kept by the creation commands.
extern std::array<unsigned char, kMaxSlots> unconfiguredPdList;
extern unsigned unconfiguredPds;

/// Reads the pattern file of the site. A file that cannot be opened leaves the table as it was.
void ReadConfigPatFile(_configPat_T* table);

/// Reads a pattern file: a line for each number of drives, at most four levels on it.
void readConfigPatterns(std::FILE* file, _configPat_T* table);

/// Whether the level is one of the tool's; another one is traced under the name of the function that asks.
bool knownLevel(const char* func, ZEB_RAID_LVL level, unsigned char contNo, int line);

/// 1 when the controller can build the level, else 0. A level that is not known is traced.
int IsSupportRaidLvl(ZEB_RAID_LVL level, const _AFCONT* conts, unsigned char contNo);

/// The most drives that the controller takes for the level; 0 for a level that is not known, which is traced.
unsigned GetMaxPdNumForRaidLvl(ZEB_RAID_LVL level, const _AFCONT* conts, unsigned char contNo);

/// 1 when the level may be built from exactly that many drives on the controller, else 0.
int isRaidConstructOk(unsigned drives, ZEB_RAID_LVL level, const _AFCONT* conts, unsigned char contNo);

/// The levels for a new configuration of that many drives. Mode 1 leaves at most one drive over, for a hot spare; any
/// other mode allows all numbers up to drives - mode + 1.
void getRaidConstructInfo(unsigned mode, unsigned drives, _raidConstructInfoT& out, const _AFCONT* conts,
                          unsigned char contNo);

/// The levels for a second LD beside a first one of the given level, up to two drives left over for hot spares.
void getOtherRaidConstructInfo(ZEB_RAID_LVL firstLevel, unsigned drives, _raidConstructInfoT& out, const _AFCONT* conts,
                               unsigned char contNo, bool snapshot);

/// The smallest number of drives for the level, 0 when it cannot be built.
unsigned getRaidConstructMinNumDrives(ZEB_RAID_LVL level, const _AFCONT* conts, unsigned char contNo);

/// Put the candidates in the order in which they are offered.
void RaidLvlSort(_raidConstructInfoT& list);
void RaidLvlSortForSnapshot(_raidConstructInfoT& list);

/// Gives every planned array and LD its default settings, name and size. Asks the library for the drives. A level
/// that is not known is traced and ends the work. Returns 0.
int CreateLDDefaultSet(_SL_CREATE_LD_INFO_T& plan, const _AFCONT* conts, unsigned char contNo, std::uint8_t initType);

/// 1 when the drives of any planned array differ in size, else 0. Asks the library for the drives.
int ConfirmDiffPDSize(const _SL_CREATE_LD_INFO_T& plan, unsigned char contNo);

/// 1 when the unconfigured drives mix interfaces, or media types, else 0.
int IsMixedInterfacePD(const _AFCONT* conts, unsigned char contNo);
int IsMixedMediaTypePD(const _AFCONT* conts, unsigned char contNo);

/// The smallest size of the group's drives, blocks, by the snapshot; all spans of a group are made equal, so that it
/// counts for each. 0 without drives.
std::uint64_t smallestSize(Controller ctrl, const PlannedArray& group);

/// The usable capacity of a planned array, by the sizes of the snapshot.
std::uint64_t CalcRAIDCapa(const PlannedArray& array, const _AFCONT* conts, unsigned char contNo);

/// Not SetLDCapaciityText, which is given its sizes: the capacity in GB of an LD on the unconfigured drives, where
/// keepSpare leaves out the one at position spareIndex.
void SetLDCapacityText(char (&text)[32], ZEB_RAID_LVL level, bool keepSpare, unsigned spareIndex, const _AFCONT* conts,
                       unsigned char contNo);

/// The capacity in GB of every planned array.
void ShowLDCapacity(char (*texts)[kCapacityTextSize], const _SL_CREATE_LD_INFO_T& plan, const _AFCONT* conts,
                    unsigned char contNo);

/// The capacity of an LD, from the first of its spans that is not empty; 0 when all are.
std::uint64_t GetLDSize(const _MR_LD_CONFIG* ld, unsigned char contNo);
