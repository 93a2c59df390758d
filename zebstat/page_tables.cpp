// Drives, LDs, groups and enclosures as tables.
#include "zebstat/page_parts.h"
#include "zebstat/page_table.h"
#include "zebstat/page_words.h"

namespace zebstat {

namespace {

using namespace facts;

constexpr char kComma[] = ", ";

std::string speedText(const std::optional<double>& gbps) {
    if (!gbps)
        return kUntoldText;
    const bool isWhole = *gbps == static_cast<double>(static_cast<int>(*gbps));
    return numberText(*gbps, isWhole ? 0 : 1);
}

std::string ldList(const std::vector<std::uint8_t>& numbers) {
    Cells names;
    for (const std::uint8_t number : numbers)
        names.push_back("LD" + std::to_string(number));
    return joined(names, kComma);
}

std::string workList(const std::vector<Operation>& operations) {
    Cells words;
    for (const Operation& operation : operations)
        words.push_back(wordText(operation.type) + " " + std::to_string(operation.percent()) + " %, for " +
                        spanText(operation.elapsedSeconds));
    return joined(words, "; ");
}

std::string failureText(const std::optional<Failure>& failure) {
    return "could not be read" + (failure ? ": " + failure->text : "");
}

Cells rowOf(const PhysicalDrive& drive) {
    Cells cells{placeText(drive.enclosureId, drive.slot), std::to_string(drive.deviceId)};
    if (!drive.info) {
        cells.push_back(failureText(drive.error));
        cells.resize(14, kUntoldText);
        return cells;
    }
    const PhysicalDriveInfo& info = *drive.info;
    const std::string role = info.role == kRoleNone ? "" : wordText(info.role);
    cells.insert(
        cells.end(),
        {joined({wordText(info.state), role, info.foreign ? "foreign" : "", workList(info.operations)}, kComma),
         joined({plainText(info.vendor), plainText(info.product), plainText(info.revision)}, " "),
         joined({upperText(info.interface), upperText(info.media)}, kNoBreak), sizeText(info.usableBytes),
         sizeText(info.rawBytes), joined({std::to_string(info.mediaErrors), std::to_string(info.otherErrors)}, " / "),
         std::to_string(info.predictiveFailures), numberText(info.temperatureCelsius, kCelsius), wordText(info.power),
         speedText(info.deviceSpeedGbps) + " / " + speedText(info.linkSpeedGbps) + kNoBreak + "Gb/s",
         joined(info.sasAddresses, " "),
         joined({info.raidGroup.value_or(""), ldList(info.logicalDrives.value_or(std::vector<std::uint8_t>{}))},
                kComma)});
    return cells;
}

Cells rowOf(const LogicalDrive& ld) {
    Cells cells{"LD" + std::to_string(ld.number)};
    if (!ld.info) {
        cells.insert(cells.end(), {kUntoldText, failureText(ld.error)});
        cells.resize(13, kUntoldText);
        return cells;
    }
    const LogicalDriveInfo& info = *ld.info;
    const auto count = [&](unsigned LogicalDriveInfo::*member) { return std::to_string(info.*member); };
    cells.insert(
        cells.end(),
        {plainText(info.name), joined({wordText(info.state), workList(info.operations)}, kComma), upperText(info.level),
         sizeText(info.sizeBytes), plainText(info.raidGroup),
         (info.stripeBytes ? sizeText(std::uint64_t{*info.stripeBytes}) : kUntoldText) + kComma +
             count(&LogicalDriveInfo::spanDepth) + " x " + count(&LogicalDriveInfo::drivesPerSpan),
         wordText(info.access),
         joined({wordText(info.readPolicy), wordText(info.ioPolicy), "disk cache " + wordText(info.diskCache)}, kComma),
         joined({wordText(info.currentWritePolicy), info.currentWritePolicy == info.defaultWritePolicy.text
                                                        ? ""
                                                        : "set to " + wordText(info.defaultWritePolicy)},
                kComma),
         joined({plainText(info.osDevice), info.osInstalled.value_or(false) ? "holds the system" : ""}, kComma),
         wordText(info.initialization) + (info.consistent ? ", consistent" : ", not consistent"),
         joined({info.cachecade ? "CacheCade" : "", info.snapshotSource ? "snapshot source" : "",
                 info.snapshotRepository ? "snapshot repository" : ""},
                kComma)});
    return cells;
}

std::string segmentList(const std::optional<std::vector<FreeSegment>>& segments) {
    if (!segments)
        return kUntoldText;
    Cells words;
    for (const FreeSegment& segment : *segments)
        words.push_back(sizeText(segment.bytes) + " (" + sizeText(segment.bytesPerDrive) + " per drive)");
    return joined(words, kComma);
}

} // namespace

void writeDriveTable(ControllerPart& part) {
    const auto& drives = part.controller.physicalDrives;
    if (!drives || drives->empty())
        return;
    Table table{"Physical drives",
                {"Place", "Device id", "State", "Drive", "Kind", "Usable", "Raw", "Errors, media / other",
                 "Predicted failures", "Temperature", "Power", "Speed, device / link", "SAS addresses", "Group"},
                {}};
    for (const PhysicalDrive& drive : *drives)
        table.rows.push_back(rowOf(drive));
    writeTable(part.out, table);
}

void writeLdTable(ControllerPart& part) {
    const auto& lds = part.controller.logicalDrives;
    if (!lds) {
        part.note("The list of the logical drives could not be read.");
        return;
    }
    if (lds->empty())
        return;
    Table table{"Logical drives",
                {"LD", "Name", "State", "Level", "Size", "Group", "Stripe, spans x drives", "Access", "Reading",
                 "Writing", "Device", "Initialization", "Use"},
                {}};
    for (const LogicalDrive& ld : *lds)
        table.rows.push_back(rowOf(ld));
    writeTable(part.out, table);
}

void writeGroupTable(ControllerPart& part) {
    const auto& groups = part.controller.raidGroups;
    if (!groups || groups->empty())
        return;
    Table table{"RAID groups", {"Group", "Level", "Usable", "Free", "Free segments", "Arrays", "Logical drives"}, {}};
    for (const RaidGroup& group : *groups) {
        Cells arrays;
        for (const std::uint16_t array : group.arrays)
            arrays.push_back(std::to_string(array));
        table.rows.push_back({group.name, upperText(group.level), sizeText(group.usableBytes),
                              sizeText(group.freeBytes), segmentList(group.freeSegments), joined(arrays, kComma),
                              ldList(group.logicalDrives)});
    }
    writeTable(part.out, table);
}

void writeEnclosureTable(ControllerPart& part) {
    const auto& enclosures = part.controller.enclosures;
    if (!enclosures || enclosures->empty())
        return;
    Table table{
        "Enclosures",
        {"Device id", "Index", "Type", "Vendor", "Product", "Revision", "Logical id", "Location", "Connector", "Slots"},
        {}};
    for (const Enclosure& enclosure : *enclosures)
        table.rows.push_back({std::to_string(enclosure.deviceId), std::to_string(enclosure.index),
                              typeText(enclosure.type), plainText(enclosure.vendor), plainText(enclosure.product),
                              plainText(enclosure.revision), plainText(enclosure.logicalId),
                              wordText(enclosure.location), plainText(enclosure.connector),
                              std::to_string(enclosure.slots)});
    writeTable(part.out, table);
}

} // namespace zebstat
