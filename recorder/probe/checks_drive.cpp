// Physical drives: the list, each drive's information, and what the enclosures and the configuration say of it.
#include "recorder/probe/checks.h"

#include "storelib/records/physical_drive.h"

#include <algorithm>

namespace zebprobe {

namespace {

constexpr std::size_t kMostEnclosures = 32;
constexpr std::uint64_t kAnyProgress =
    wire::kPdProgRebuild | wire::kPdProgPatrolRead | wire::kPdProgClear | wire::kPdProgCopyback;

void judgeDriveList(const Inspection& inspection, const Cell& list) {
    const Cell count = list.at("count");
    judgeAtMost(inspection, count, wire::kMaxSlots);
    const std::size_t entries = std::min<std::uint64_t>(count.value(), wire::kMaxSlots);
    constexpr std::size_t kHead = sizeof(_MR_PD_LIST) - sizeof(_MR_PD_LIST::addr);
    const std::size_t size = kHead + count.value() * sizeof(_MR_PD_ADDRESS);
    inspection.tells("sizes agree", list.at("size").value() == size, {list.at("size"), count});
    std::vector<std::uint64_t> ids;
    constexpr std::uint64_t kLastDeviceType = 0x1F; // SPC-3
    for (std::size_t i = 0; i < entries; ++i) {
        const Cell entry = list.at("addr").entry(i);
        judgeAtMost(inspection, entry.at("scsiDevType"), kLastDeviceType);
        const Cell id = entry.at("deviceId");
        inspection.bounds("no drive is listed twice", std::ranges::find(ids, id.value()) == ids.end(), {id});
        ids.push_back(id.value());
    }
}

/// The place of a drive against the list of enclosures.
void judgeEnclosure(const Inspection& inspection, const Cell& info) {
    const Cell id = info.at("enclDeviceId");
    const Cell list = inspection.cell(kEnclList);
    if (!list.there() || id.value() == wire::kNoDevice)
        return;
    const std::size_t count = std::min<std::uint64_t>(list.at("count").value(), kMostEnclosures);
    bool found = false;
    for (std::size_t i = 0; i < count; ++i) {
        const Cell entry = list.at("encl").entry(i);
        if (entry.at("deviceId").value() != id.value())
            continue;
        found = true;
        judgeSame(inspection, "the drive has its enclosure's index", info.at("enclIndex"), entry.at("index"));
        // Slots are counted from 0 or from 1.
        inspection.bounds("the drive's slot is one of its enclosure",
                          info.at("slotNo").value() <= entry.at("slotCount").value(),
                          {info.at("slotNo"), entry.at("slotCount")});
    }
    inspection.tells("the drive's enclosure is in the list", found,
                     {id, list.at("count"), list.at("encl").entry(0).at("deviceId")});
}

// A copyback reports in the rebuild's place.
constexpr std::initializer_list<Work> kKindsOfDriveWork = {{wire::kPdProgRebuild | wire::kPdProgCopyback, "rebuild"},
                                                           {wire::kPdProgPatrolRead, "patrolRead"},
                                                           {wire::kPdProgClear, "clear"}};

void judgeDriveProgress(const Inspection& inspection, const Cell& progress) {
    judgeAtMost(inspection, progress.at("active"), kAnyProgress);
    judgeWork(inspection, progress, kKindsOfDriveWork);
}

/// The information against what else is said of the same drive.
void judgeAgainstOthers(const Inspection& inspection, const Cell& info, std::uint32_t deviceId) {
    const Cell list = inspection.cell(kPdList);
    for (std::size_t i = 0; list.there() && i < std::min<std::uint64_t>(list.at("count").value(), wire::kMaxSlots);
         ++i) {
        const Cell entry = list.at("addr").entry(i);
        if (entry.at("deviceId").value() != deviceId)
            continue;
        for (const char* field : {"enclDeviceId", "enclIndex", "slotNo", "scsiDevType"})
            judgeSame(inspection, "the list says the same as the drive", entry.at(field), info.at(field));
        judgeSame(inspection, "the list says the same as the drive",
                  entry.at("sasAddr").number(0, sizeof(std::uint64_t)),
                  info.at("sasAddr").number(0, sizeof(std::uint64_t)));
    }
    judgeSame(inspection, "the operations that are allowed are the same", info.at("allowedOps"),
              inspection.cell(kPdAllowedOps, deviceId).at("ops"));
    if (const Cell progress = inspection.cell(kPdProgress, deviceId); progress.there())
        judgeSame(inspection, "the work under way is the same", info.at("progress").at("active"),
                  progress.at("active"));
}

void judgeDriveInformation(const Inspection& inspection, const Cell& info, std::uint32_t deviceId) {
    inspection.tells("the asked object answers", info.at("ref").at("deviceId").value() == deviceId,
                     {info.at("ref").at("deviceId")});
    for (const char* text : {"vendor", "product", "revision"})
        judgeText(inspection, info.at("inquiry").at(text));
    constexpr std::uint64_t kLastDeviceType = 0x1F; // SPC-3
    constexpr std::uint64_t kFastest = 7;
    constexpr std::uint64_t kLastMedium = 2;
    constexpr std::uint64_t kLastPdState = 0x50;
    judgeAtMost(inspection, info.at("scsiDevType"), kLastDeviceType);
    judgeAtMost(inspection, info.at("deviceSpeed"), kFastest);
    judgeAtMost(inspection, info.at("linkSpeed"), kFastest);
    judgeAtMost(inspection, info.at("fwState"), kLastPdState);
    judgeAtMost(inspection, info.at("pathCount"), wire::kMaxPaths);
    inspection.bounds("numbers, states and levels are known ones",
                      (info.at("mediaType").value() & 0x0FU) <= kLastMedium, {info.at("mediaType")});
    inspection.tells("sizes agree", info.at("coercedSize").value() <= info.at("rawSize").value(),
                     {info.at("coercedSize"), info.at("rawSize")});
    judgeEnclosure(inspection, info);
    judgeAgainstOthers(inspection, info, deviceId);
    judgeDriveProgress(inspection, info.at("progress"));
    judgeElapsed(inspection, info.at("progress"), inspection.cell(kPdInfo, deviceId, true).at("progress"),
                 kKindsOfDriveWork);
}

} // namespace

void judgeDrives(const Inspection& inspection) {
    if (const Cell list = inspection.cell(kPdList); list.there())
        judgeDriveList(inspection, list);
    for (const std::uint32_t drive : inspection.survey.drives(inspection.ctrl)) {
        if (const Cell info = inspection.cell(kPdInfo, drive); info.there())
            judgeDriveInformation(inspection, info, drive);
        if (const Cell progress = inspection.cell(kPdProgress, drive); progress.there())
            judgeDriveProgress(inspection, progress);
    }
}

} // namespace zebprobe
