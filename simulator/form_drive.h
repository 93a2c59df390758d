// The scenario form of drives.
#pragma once

#include "simulator/scenario_io.h"

namespace zebsim {

/// The state of a drive whose file leaves it to its place: in an array, a spare, or neither.
inline constexpr std::uint16_t kUndecidedState = 0xFFFF;
inline constexpr double kBlocksPerGB = 2097152;

/// Words for the firmware states, media and interface codes.
inline constexpr Words kDriveStates = {
    {"good", kPdUnconfiguredGood}, {"bad", kPdUnconfiguredBad}, {"spare", kPdHotSpare}, {"offline", kPdOffline},
    {"failed", kPdFailed},         {"rebuild", kPdRebuild},     {"online", kPdOnline},  {"copyback", kPdCopyback}};
inline constexpr Words kMediaWords = {{"HDD", kHdd}, {"SSD", kSsd}};
inline constexpr Words kInterfaceWords = {
    {"unknown", kUnknownInterface}, {"SCSI", kParallelScsi}, {"SAS", kSas}, {"SATA", kSata}, {"FC", kFibreChannel}};

/// A size: "blocks", or on reading "sizeGB" (GB of 1024 x 1024 x 1024 bytes) in its place.
template <class Io>
void describeBlocks(Io& io, std::uint64_t& blocks, std::uint64_t fallback) {
    if constexpr (Io::kReading) {
        if (io.has("sizeGB")) {
            double size = 0;
            io.real("sizeGB", size, 0, 0, 1e7);
            if (io.has("blocks"))
                throw ScenarioError(io.at("sizeGB"), "give either \"sizeGB\" or \"blocks\"");
            blocks = static_cast<std::uint64_t>(std::llround(size * kBlocksPerGB));
            return;
        }
    }
    io.number("blocks", blocks, fallback, 0, std::uint64_t{1} << 50);
}

/// A made-up address unless the file gives some. The path count is their number, or a lie on demand.
template <class Io>
void describeSasAddresses(Io& io, Drive& drive, const Controller& ctrl) {
    constexpr std::uint64_t kPlaceholder = 0x50A0B0C000000000;
    const std::vector<std::uint64_t> fallback{kPlaceholder | std::uint64_t{ctrl.id & 0xFF} << 24 |
                                              std::uint64_t{drive.deviceId} << 4};
    io.numbers("sasAddresses", drive.sasAddresses, fallback, 4);
    io.number("pathCount", drive.pathCount, static_cast<std::uint8_t>(drive.sasAddresses.size()));
}

/// A drive; `previous` is the one before it in the list, or null. It has the next slot by default, a device id by its
/// slot and a sequence number by its device id.
template <class Io>
void describeDrive(Io& io, Drive& drive, const Controller& ctrl, const Drive* previous) {
    constexpr std::uint64_t kCoercedAway = 1094236;
    constexpr std::uint16_t kFirstDeviceId = 8;
    const Drive usual;
    const int slot = previous == nullptr ? 0 : previous->slot + 1;
    io.number("slot", drive.slot, static_cast<std::uint8_t>(slot));
    io.number("deviceId", drive.deviceId, static_cast<std::uint16_t>(kFirstDeviceId + drive.slot), 0, kNoDevice - 1);
    io.number("enclosure", drive.enclosureId, ctrl.enclosures.empty() ? kNoDevice : ctrl.enclosures.front().deviceId);
    io.word("state", drive.state, kUndecidedState, kDriveStates);
    io.word("media", drive.media, usual.media, kMediaWords);
    io.word("interface", drive.interface, usual.interface, kInterfaceWords);
    io.text("vendor", drive.vendor, drive.interface == kSata ? "ATA" : "QUORVEL", 8);
    io.text("product", drive.product, drive.media == kSsd ? "Pellucor SSD 200" : "Pellucor SAS 300", 16);
    io.text("revision", drive.revision, usual.revision, 4);
    describeBlocks(io, drive.blocks, usual.blocks);
    io.number("rawBlocks", drive.rawBlocks, drive.blocks + kCoercedAway);
    io.number("seq", drive.seq, static_cast<std::uint16_t>(drive.deviceId + 2));
    io.number("mediaErrors", drive.mediaErrors, usual.mediaErrors);
    io.number("otherErrors", drive.otherErrors, usual.otherErrors);
    io.number("predictiveFailures", drive.predictiveFailures, usual.predictiveFailures);
    describeSasAddresses(io, drive, ctrl);
    io.optionalNumber("temperature", drive.temperature, usual.temperature);
    io.word("power", drive.powerState, usual.powerState, {{"on", 0}, {"off", 1}, {"transition", 255}});
    io.word("deviceSpeed", drive.deviceSpeed, usual.deviceSpeed, {{"1.5G", 1}, {"3G", 2}, {"6G", kSpeed6G}});
    io.word("linkSpeed", drive.linkSpeed, drive.deviceSpeed, {{"1.5G", 1}, {"3G", 2}, {"6G", kSpeed6G}});
    io.flag("boot", drive.boot, usual.boot);
    io.flag("foreign", drive.foreign, usual.foreign);
    io.flag("locate", drive.locate, usual.locate);
    io.number("copybackPartner", drive.copybackPartner, usual.copybackPartner);
    io.task("rebuild", drive.rebuild);
    io.task("patrolRead", drive.patrolRead);
    io.task("clear", drive.clear);
    io.task("copyback", drive.copyback);
}

/// Reads the drive list. "repeat": n in an entry stands for n such drives in consecutive slots.
inline void describeDrives(Reader& io, Controller& ctrl) {
    constexpr std::uint64_t kNextAddress = 16;
    io.objects("drives", ctrl.drives, 256, [&](Reader& element, Drive&, std::size_t) {
        std::uint16_t repeat = 1;
        element.number("repeat", repeat, 1, 1, 256);
        Drive drive;
        ctrl.drives.pop_back();
        describeDrive(element, drive, ctrl, ctrl.drives.empty() ? nullptr : &ctrl.drives.back());
        ctrl.drives.push_back(drive);
        for (unsigned i = 1; i < repeat; ++i) {
            if (drive.slot == 255 || drive.deviceId == kNoDevice - 1)
                throw ScenarioError(element.at("repeat"), "repeat less often; slots end at 255");
            ++drive.slot;
            ++drive.deviceId;
            ++drive.seq;
            for (std::uint64_t& address : drive.sasAddresses)
                address += kNextAddress;
            ctrl.drives.push_back(drive);
        }
    });
}

/// Writes the drive list, one entry for each drive.
inline void describeDrives(Writer& io, Controller& ctrl) {
    io.objects("drives", ctrl.drives, 256, [&](Writer& element, Drive& drive, std::size_t i) {
        describeDrive(element, drive, ctrl, i == 0 ? nullptr : &ctrl.drives[i - 1]);
    });
}

} // namespace zebsim
