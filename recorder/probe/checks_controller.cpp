// The library's own answers and what concerns a controller as a whole.
#include "recorder/probe/checks.h"

#include "storelib/records/all.h"

#include <algorithm>
#include <set>

namespace zebprobe {

namespace {

constexpr std::uint32_t kBadController = 0x800A;
constexpr std::uint64_t kMostImages = 8;

/// Whether a request whose answer names its object named the one that was asked for; nothing without such an answer.
struct Identities {
    std::size_t right = 0;
    std::size_t wrong = 0;
    void compare(const Cell& answered, std::uint32_t asked) {
        if (answered.there() && asked != 0)
            ++(answered.value() == asked ? right : wrong);
    }
};

/// The request's own records: what was asked arrived.
void judgeRequests(const Inspection& inspection) {
    const Survey& survey = inspection.survey;
    Identities named;
    Identities sensed;
    std::size_t commands = 0;
    std::size_t silent = 0;
    std::set<const wire::RecordLayout*> overrun;
    for (const Answered& answered : survey.all())
        if (answered.past != 0)
            overrun.insert(answered.layout);
    for (std::size_t ctrl = 0; ctrl < survey.controllers(); ++ctrl) {
        for (const std::uint32_t drive : survey.drives(ctrl)) {
            named.compare(survey.cell(ctrl, kPdInfo, drive).at("ref").at("deviceId"), drive);
            if (const Answered* page = survey.find(ctrl, kTemperature, drive); page != nullptr && page->status == 0)
                ++(page->bytes[sizeof(_SL_SCSI_PASSTHRU_T)] == 0x0D ? sensed.right : sensed.wrong);
        }
        for (const std::uint32_t ld : survey.lds(ctrl))
            named.compare(survey.cell(ctrl, kLdInfo, ld).at("config").at("properties").at("ref").at("targetId"), ld);
        for (const Question question : {kClock, kMfcDefaults, kConnectors})
            if (const Answered* answered = survey.find(ctrl, question); answered != nullptr && answered->status == 0)
                ++(answered->wrote != 0 ? commands : silent);
    }
    const auto note = [&](const wire::RecordLayout& record, const char* check, std::size_t right, std::size_t wrong) {
        if (right + wrong != 0)
            inspection.verdicts.judgeSent(record, check, right > wrong);
    };
    note(wire::Layout<_SL_LIB_CMD_PARAM_T>::kRecord, "the asked object answers", named.right, named.wrong);
    // One record may be larger than it is declared; when several are, it is the size that is not read.
    constexpr std::size_t kSeveral = 3;
    if (overrun.size() >= kSeveral)
        inspection.verdicts.judgeSent(wire::Layout<_SL_LIB_CMD_PARAM_T>::kRecord, "the declared size is kept to",
                                      false);
    note(wire::Layout<_SL_DCMD_INPUT_T>::kRecord, "a controller command brings its data", commands, silent);
    note(wire::Layout<_SL_SCSI_PASSTHRU_T>::kRecord, "the asked page of a drive's log comes", sensed.right,
         sensed.wrong);
}

void judgeImages(const Inspection& inspection, const Cell& info, const char* count, const char* table) {
    judgeAtMost(inspection, info.at(count), kMostImages);
    for (std::size_t i = 0; i < std::min(info.at(count).value(), kMostImages); ++i)
        for (const char* text : {"name", "version", "buildDate", "buildTime"})
            judgeText(inspection, info.at(table).entry(i).at(text));
}

void judgeProperties(const Inspection& inspection, const Cell& properties) {
    for (const char* rate : {"rebuildRate", "patrolReadRate", "bgiRate", "ccRate", "reconRate"})
        judgeAtMost(inspection, properties.at(rate), kPercent);
    for (const char* flag : {"alarmEnable", "disableAutoRebuild"})
        judgeAtMost(inspection, properties.at(flag), 1);
}

/// The counts of the controller's record against the lists.
void judgeCounts(const Inspection& inspection, const Cell& info) {
    const Cell lds = inspection.cell(kLdList);
    const Cell present = info.at("ldPresentCount");
    if (lds.there())
        inspection.tells("counts agree with the lists", present.value() == lds.at("count").value(),
                         {present, lds.at("count")});
    for (const char* part : {"ldDegradedCount", "ldOfflineCount"})
        inspection.bounds("counts fit each other", info.at(part).value() <= present.value(), {info.at(part), present});
    const Cell disks = info.at("pdDiskPresentCount");
    if (const Cell drives = inspection.cell(kPdList); drives.there() && drives.at("count").value() < wire::kMaxSlots)
        inspection.tells("counts agree with the lists",
                         disks.value() == inspection.survey.drives(inspection.ctrl).size(),
                         {disks, drives.at("count"), drives.at("addr").entry(0).at("scsiDevType")});
    inspection.bounds("counts fit each other", disks.value() <= info.at("pdPresentCount").value(),
                      {disks, info.at("pdPresentCount")});
    for (const char* part : {"pdDiskPredFailureCount", "pdDiskFailedCount"})
        inspection.bounds("counts fit each other", info.at(part).value() <= disks.value(), {info.at(part), disks});
}

void judgeControllerInformation(const Inspection& inspection, const Cell& info) {
    for (const char* text : {"productName", "serialNo", "packageVersion"})
        judgeText(inspection, info.at(text));
    judgeImages(inspection, info, "imageComponentCount", "imageComponent");
    judgeImages(inspection, info, "pendingImageComponentCount", "pendingImageComponent");
    judgeTime(inspection, info.at("currentFwTime"));
    inspection.bounds("sizes agree", info.at("stripeSizeMin").value() <= info.at("stripeSizeMax").value(),
                      {info.at("stripeSizeMin"), info.at("stripeSizeMax")});
    const Cell hardware = info.at("hwPresent");
    if (inspection.cell(kBbuStatus).there())
        inspection.tells("the cache backup unit that answers is present",
                         (hardware.value() & wire::kHwCacheBackup) != 0, {hardware});
    const Cell properties = inspection.cell(kCtrlProp);
    judgeSame(inspection, "the information holds the properties", info.at("properties"), properties);
    judgeCounts(inspection, info);
}

void judgePatrolRead(const Inspection& inspection, const Cell& patrol) {
    constexpr std::uint64_t kDisabled = 2;
    constexpr std::size_t kRoom = 64;
    judgeAtMost(inspection, patrol.at("mode"), kDisabled);
    const Cell count = patrol.at("excludedLdCount");
    judgeAtMost(inspection, count, kRoom);
    for (std::size_t i = 0; i < kRoom; ++i) {
        const Cell excluded = patrol.at("excludedLd").number(i, sizeof(std::uint16_t));
        if (i < count.value())
            judgeAtMost(inspection, excluded, wire::kMaxLds - 1);
        else
            inspection.tells("places behind the count are empty",
                             excluded.value() == 0 || excluded.value() == wire::kNoDevice, {excluded});
    }
    judgeNearClock(inspection, patrol.at("nextExecution"));
}

void judgeOsMap(const Inspection& inspection, const Cell& map) {
    constexpr std::uint64_t kRoom = 256;
    judgeAtMost(inspection, map.at("count"), kRoom);
    const auto lds = inspection.survey.lds(inspection.ctrl);
    for (std::size_t i = 0; i < std::min(map.at("count").value(), kRoom); ++i) {
        const Cell entry = map.at("entry").entry(i);
        const Cell target = entry.at("targetId");
        if (const Cell list = inspection.cell(kLdList); list.there())
            inspection.tells("LDs are in the list", std::ranges::find(lds, target.value()) != lds.end(),
                             {target, list.at("ld")});
        judgeAtMost(inspection, entry.at("partitionArg"), 0xFF);
        judgeText(inspection, entry.at("osDeviceName"), true);
    }
}

void judgePci(const Inspection& inspection, const Cell& pci) {
    judgeAtMost(inspection, pci.at("bus"), 0xFF);
    judgeAtMost(inspection, pci.at("device"), 31);
    judgeAtMost(inspection, pci.at("function"), 7);
}

} // namespace

void judgeLibrary(const Inspection& inspection) {
    const Survey& survey = inspection.survey;
    const Cell list = survey.cell(0, kCtrlList);
    if (!list.there())
        return;
    judgeAtMost(inspection, list.at("count"), wire::kMaxListedControllers);
    std::vector<std::uint64_t> ids;
    for (std::size_t i = 0; i < survey.controllers(); ++i) {
        const Cell entry = list.at("ctrl").number(i, sizeof(std::uint32_t));
        const Answered* info = survey.find(i, kCtrlInfo);
        constexpr unsigned kKindShift = 24;
        constexpr std::uint64_t kLastKind = 2;
        inspection.bounds("numbers, states and levels are known ones", entry.value() >> kKindShift <= kLastKind,
                          {entry});
        inspection.bounds("no controller is listed twice", std::ranges::find(ids, entry.value()) == ids.end(), {entry});
        ids.push_back(entry.value());
        inspection.tells("the listed controllers are known", info != nullptr && info->status != kBadController,
                         {list.at("ctrl")});
    }
    if (const Cell version = survey.cell(0, kVersion); version.there())
        for (const char* text : {"revision", "version"})
            judgeText(inspection, version.at(text));
    judgeRequests(inspection);
}

void judgeController(const Inspection& inspection) {
    if (const Cell info = inspection.cell(kCtrlInfo); info.there())
        judgeControllerInformation(inspection, info);
    if (const Cell properties = inspection.cell(kCtrlProp); properties.there())
        judgeProperties(inspection, properties);
    if (const Cell pci = inspection.cell(kPci); pci.there())
        judgePci(inspection, pci);
    if (const Cell driver = inspection.cell(kDriver); driver.there())
        for (const wire::FieldLayout& field : wire::Layout<_MR_DRV_DRIVER_VERSION>::kFields)
            judgeText(inspection, driver.at(field.name));
    if (const Cell patrol = inspection.cell(kPatrolRead); patrol.there())
        judgePatrolRead(inspection, patrol);
    if (const Cell map = inspection.cell(kOsMap); map.there())
        judgeOsMap(inspection, map);
    if (const Cell defaults = inspection.cell(kMfcDefaults); defaults.there())
        judgeAtMost(inspection, defaults.at("failPdOnSmartError"), 1);
}

} // namespace zebprobe
