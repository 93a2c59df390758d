// The scenario form of arrays, LDs, spares and foreign configurations.
#pragma once

#include "simulator/form_drive.h"

#include <algorithm>

namespace zebsim {

/// The state of an LD whose file leaves it to the drives.
inline constexpr std::uint8_t kUndecidedLdState = 0xFF;

inline constexpr Words kLdStates = {{"offline", kLdOffline},
                                    {"partiallyDegraded", kLdPartiallyDegraded},
                                    {"degraded", kLdDegraded},
                                    {"optimal", kLdOptimal}};

/// An array. Without "ref" it is its place in the list, without "blocks" as large as its smallest drive.
template <class Io>
void describeArray(Io& io, Array& array, const Controller& ctrl, std::size_t index) {
    io.number("ref", array.ref, static_cast<std::uint16_t>(index), 0, 127);
    io.drives("drives", array.drives, ctrl);
    describeBlocks(io, array.blocks, smallestDrive(ctrl, array));
}

/// A span. Without "blocks" it reaches to the end of its array, which must be among `arrays` then.
template <class Io>
void describeSpan(Io& io, Span& span, const std::vector<Array>& arrays) {
    const Span usual;
    io.number("array", span.array, usual.array, 0, 127);
    io.number("startBlock", span.startBlock, usual.startBlock);
    const auto array = std::find_if(arrays.begin(), arrays.end(), [&](const Array& a) { return a.ref == span.array; });
    const bool inside = array != arrays.end() && array->blocks > span.startBlock;
    describeBlocks(io, span.blocks, inside ? array->blocks - span.startBlock : 0);
}

/// Cache, access and disk cache policy. Write back is the default where a cache backup unit is; the policy in force
/// follows from the default one.
template <class Io>
void describePolicies(Io& io, LogicalDrive& ld, const Controller& ctrl) {
    constexpr std::uint8_t kWriteBack = 0x01;
    const LogicalDrive usual;
    io.number("cachePolicy", ld.cachePolicy, ctrl.cacheBackup ? kWriteBack : usual.cachePolicy);
    io.number("currentCachePolicy", ld.currentCachePolicy, effectiveCachePolicy(ctrl, ld.cachePolicy));
    io.word("accessPolicy", ld.accessPolicy, usual.accessPolicy, {{"rw", 0}, {"ro", 2}, {"blocked", 3}});
    io.word("diskCachePolicy", ld.diskCachePolicy, usual.diskCachePolicy,
            {{"unchanged", 0}, {"enabled", 1}, {"disabled", 2}});
}

/// An LD on some of `arrays`. A state that is not given is decided when all drives are known.
template <class Io>
void describeLd(Io& io, LogicalDrive& ld, const Controller& ctrl, const std::vector<Array>& arrays, std::size_t index) {
    const LogicalDrive usual;
    io.number("id", ld.id, static_cast<std::uint8_t>(index), 0, 63);
    io.text("name", ld.name, usual.name, 16);
    io.number("level", ld.level, usual.level, 0, 10);
    io.objects("spans", ld.spans, kMaxSpans,
               [&](auto& element, Span& span, std::size_t) { describeSpan(element, span, arrays); });
    io.number("stripe", ld.stripe, usual.stripe);
    io.number("seq", ld.seq, static_cast<std::uint16_t>(ld.id + 32));
    io.word("state", ld.state, kUndecidedLdState, kLdStates);
    describePolicies(io, ld, ctrl);
    io.word("initState", ld.initState, usual.initState, {{"none", 0}, {"quick", 1}, {"full", 2}});
    io.number("snapshotFlags", ld.snapshotFlags, usual.snapshotFlags);
    io.flag("noBackgroundInit", ld.noBackgroundInit, usual.noBackgroundInit);
    io.flag("consistent", ld.consistent, usual.consistent);
    io.flag("snapshotSource", ld.snapshotSource, usual.snapshotSource);
    io.flag("repository", ld.repository, usual.repository);
    io.flag("cacheCade", ld.cacheCade, usual.cacheCade);
    io.flag("osInstalled", ld.osInstalled, usual.osInstalled);
    io.texts("osDevices", ld.osDevices, 4, 28);
    io.task("check", ld.check);
    io.task("backgroundInit", ld.backgroundInit);
    io.task("init", ld.init);
    io.task("reconstruction", ld.reconstruction);
}

/// A hot spare; one that names no arrays is global.
template <class Io>
void describeSpare(Io& io, Spare& spare, const Controller& ctrl) {
    const Spare usual;
    io.drive("drive", spare.deviceId, ctrl);
    io.numbers("arrays", spare.arrays, usual.arrays, 16);
    io.flag("revertible", spare.revertible, usual.revertible);
    io.flag("enclosureAffinity", spare.enclosureAffinity, usual.enclosureAffinity);
}

/// A foreign configuration: arrays and LDs of its own, on drives of this controller.
template <class Io>
void describeForeign(Io& io, ForeignConfig& foreign, const Controller& ctrl) {
    io.text("guid", foreign.guid, ForeignConfig{}.guid, 24);
    io.objects("arrays", foreign.arrays, 128,
               [&](auto& element, Array& array, std::size_t i) { describeArray(element, array, ctrl, i); });
    io.objects("lds", foreign.lds, 64, [&](auto& element, LogicalDrive& ld, std::size_t i) {
        describeLd(element, ld, ctrl, foreign.arrays, i);
    });
}

/// Arrays, LDs, spares and foreign configurations; the controller's drives and cache backup unit are known already.
template <class Io>
void describeConfiguration(Io& io, Controller& ctrl) {
    io.objects("arrays", ctrl.arrays, 128,
               [&](auto& element, Array& array, std::size_t i) { describeArray(element, array, ctrl, i); });
    io.objects("lds", ctrl.lds, 64,
               [&](auto& element, LogicalDrive& ld, std::size_t i) { describeLd(element, ld, ctrl, ctrl.arrays, i); });
    io.objects("spares", ctrl.spares, 256,
               [&](auto& element, Spare& spare, std::size_t) { describeSpare(element, spare, ctrl); });
    io.objects("foreign", ctrl.foreign, 8,
               [&](auto& element, ForeignConfig& foreign, std::size_t) { describeForeign(element, foreign, ctrl); });
}

} // namespace zebsim
