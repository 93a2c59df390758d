// Operations: what each sends, in which order, and what a failure at each step leaves.
#include <cstring>

#include "storelib/common/StoreLib/cache_backup.h"
#include "storelib/common/StoreLib/configuration.h"
#include "storelib/common/StoreLib/controller.h"
#include "storelib/common/StoreLib/hot_spare.h"
#include "storelib/common/StoreLib/logical_drive.h"
#include "storelib/common/StoreLib/physical_drive.h"
#include "tests/support/wire.h"

namespace zebtest {
namespace {

enum class Target { kNone, kAll, kPd, kPdSeq, kPdSeqTraced, kLdSeq };
using Target::kPdSeq, Target::kLdSeq;

const struct Change {
    const char* name;
    std::uint8_t type, cmd;
    Target target;
    std::uint8_t param;
    std::uint32_t (*call)();
} kChanges[] = {
    {"SLMakeDriveOnline", 0x02, 0x01, kPdSeq, 0, [] { return SLMakeDriveOnline(kCont, kSlot); }},
    {"SLMakeDriveOffline", 0x02, 0x02, kPdSeq, 0, [] { return SLMakeDriveOffline(kCont, kSlot); }},
    {"SLStartRebuild", 0x02, 0x05, kPdSeq, 0, [] { return SLStartRebuild(kCont, kSlot); }},
    {"SLCancelRebuild", 0x02, 0x06, kPdSeq, 0, [] { return SLCancelRebuild(kCont, kSlot); }},
    {"SLStartLocatePD", 0x02, 0x08, Target::kPd, 0xE1, [] { return SLStartLocatePD(kCont, kSlot, 0xE1); }},
    {"SLStopLocatePD", 0x02, 0x09, Target::kPd, 0, [] { return SLStopLocatePD(kCont, kSlot); }},
    {"SLMakeGlobalHotspare", 0x02, 0x0A, kPdSeq, 0, [] { return SLMakeGlobalHotspare(kCont, kSlot); }},
    {"SLRemoveHotspare", 0x02, 0x0D, kPdSeq, 0, [] { return SLRemoveHotspare(kCont, kSlot); }},
    {"SLMakeDriveUnconfGood", 0x02, 0x13, Target::kPdSeqTraced, 0, [] { return SLMakeDriveUnconfGood(kCont, kSlot); }},
    {"SLDeleteLD", 0x03, 0x03, kLdSeq, 0, [] { return SLDeleteLD(kCont, kLd); }},
    {"SLStartCheckConsistency", 0x03, 0x06, kLdSeq, 0, [] { return SLStartCheckConsistency(kCont, kLd); }},
    {"SLCancelCheckConsistency", 0x03, 0x07, kLdSeq, 0, [] { return SLCancelCheckConsistency(kCont, kLd); }},
    {"SLStartInitialization", 0x03, 0x09, kLdSeq, 1, [] { return SLStartInitialization(kCont, kLd); }},
    {"SLCancelInitialization", 0x03, 0x0A, kLdSeq, 0, [] { return SLCancelInitialization(kCont, kLd); }},
    {"SLStartPatrolReadOpe", 0x01, 0x11, Target::kNone, 0, [] { return SLStartPatrolReadOpe(kCont); }},
    {"SLStopPatrolReadOpe", 0x01, 0x12, Target::kNone, 0, [] { return SLStopPatrolReadOpe(kCont); }},
    {"SLLearnCacheBkup", 0x05, 0x03, Target::kNone, 0, [] { return SLLearnCacheBkup(kCont); }},
    {"SLImportForeignConfig", 0x04, 0x06, Target::kAll, 0, [] { return SLImportForeignConfig(kCont); }},
    {"SLClearForeignConfig", 0x04, 0x07, Target::kAll, 0, [] { return SLClearForeignConfig(kCont); }},
};

/// The reads by which a wrapper comes to its target's id and sequence number, 0xA1B2, and the reference that they make.
std::pair<std::vector<Step>, std::uint32_t> resolve(const std::string& name, Target target) {
    const ExpectedRequest list = pdList({device(1, 2), device(kDevice, kSlot)});
    _MR_PD_INFO pd{};
    pd.ref = {9, 0xA1B2};
    _MR_LD_INFO ld{};
    ld.config.properties.ref.seqNo = 0xA1B2;
    const Step findPd{list, {"SLGetPDList", "SLGetDeviceId", name}};
    switch (target) {
    case Target::kNone:
        return {{}, 0};
    case Target::kAll:
        return {{}, ~0U};
    case Target::kPd:
        return {{findPd}, kDevice};
    case kLdSeq:
        return {{{request(0x03, 0x00, kLd, sizeof ld, bytesOf(ld)), {"SLGetLDInfo", "SLGetLDSequenceNumber", name}}},
                reference(kLd, 0xA1B2)};
    default:
        return {
            {findPd,
             {list, {"SLGetPDList", "SLGetSlotNo", "SLGetPDSequenceNumber", name}},
             {list, {"SLGetPDList", "SLGetDeviceId", "SLGetPDInfo", "SLGetPDSequenceNumber", name}},
             {request(0x02, 0x00, kDevice, sizeof pd, bytesOf(pd)), {"SLGetPDInfo", "SLGetPDSequenceNumber", name}}},
            reference(kDevice, 0xA1B2)};
    }
}

using WireOperations = WireTest;

TEST_F(WireOperations, ResolveTheirTargetAndSend) {
    for (const Change& change : kChanges) {
        auto [steps, ref] = resolve(change.name, change.target);
        steps.push_back({request(change.type, change.cmd, ref), {change.name}});
        steps.back().request.param[0] = change.param;
        if (change.target == Target::kPdSeqTraced) {
            steps.front().before = "func=SLMakeDriveUnconfGood: contNo=1, pdNo=200\n";
            steps.back().always = true;
        }
        check(change.name, steps, change.call);
    }
}

/// A record of random bytes.
template <class Record>
Record randomRecord(std::uint32_t seed) {
    Record record{};
    const Bytes bytes = randomBytes(seed, sizeof record);
    std::memcpy(&record, bytes.data(), sizeof record);
    return record;
}

TEST_F(WireOperations, ControllerPropertiesKeepEveryOtherByte) {
    const auto read = randomRecord<_MR_CTRL_PROP>(3);
    const auto change = [&](const std::string& name, const std::string& heading, const _MR_CTRL_PROP& wanted,
                            auto call) {
        const Bytes written = bytesOf(wanted);
        check(name,
              {{request(0x01, 0x01, 0, sizeof read, bytesOf(read), Bytes{}), {name}},
               {request(0x01, 0x02, read.seqNo, sizeof read, {}, written),
                {name},
                "func=" + name + heading + dumpText(written),
                true}},
              call);
    };
    for (unsigned flags = 0; flags < 8; ++flags) {
        _MR_CTRL_PROP written = read;
        written.rebuildRate = written.patrolReadRate = written.bgiRate = written.ccRate = written.reconRate = 30;
        written.onOff = (read.onOff & ~0x23U) | (flags & 3U) | (flags & 4U) << 3U;
        const auto flag = [&](unsigned bit) { return static_cast<std::uint8_t>(0xA2U | (flags >> bit & 1U)); };
        const SL_CTRL_SETTING_INFO settings{30, flag(0), flag(1), flag(2)}; // of each flag only bit 0 counts
        change("SLSetCtrlProp", ": contNo=1\n", written, [&] { return SLSetCtrlProp(kCont, &settings); });
    }
    _MR_CTRL_PROP written = read;
    written.disableAutoRebuild = 0xFD;
    change("SLSetCtrlRbldMode", ": contNo=1, disableAutoRebuild=253\n", written,
           [] { return SLSetCtrlRbldMode(kCont, 0xFD); });
}

TEST_F(WireOperations, PatrolReadPropertiesAreTheSecondRecord) {
    auto properties = randomRecord<_MR_PR_PROPERTIES>(4);
    const auto prop = randomRecord<_MR_CTRL_PROP>(5);
    const Bytes sent = bytesOf(properties);
    const std::string name = "SLSetPatrolReadProp";
    check(name,
          {{request(0x01, 0x01, 0, sizeof prop, bytesOf(prop)), {"SLGetCtrlProp", "SLGetCtrlSequenceNumber", name}},
           {request(0x01, 0x10, prop.seqNo, sizeof properties, {}, sent),
            {name},
            "func=" + name + ": contNo=1\n" + dumpText(sent),
            true}},
          [&] { return SLSetPatrolReadProp(kCont, nullptr, &properties); });
}

TEST_F(WireOperations, LdPropertiesNameTheirOwnLd) {
    const auto read = randomRecord<_MR_LD_PROPERTIES>(5);
    const std::uint32_t own = reference(read.ref.targetId, read.ref.seqNo);
    const std::pair<std::pair<unsigned char, unsigned char>, unsigned> cases[] = {
        {{0, 0}, 2}, {{1, 0}, 3}, {{0xFE, 1}, 0}, {{0xFF, 0xFF}, 1}};
    for (const auto& [flags, bits] : cases) {
        _MR_LD_PROPERTIES written = read;
        written.snapshotFlags = static_cast<std::uint8_t>((read.snapshotFlags & ~3U) | bits);
        check(
            "SLSetSnapshotProp",
            {{request(0x03, 0x01, kLd, sizeof read, bytesOf(read)), {"SLGetLDProperties", "SLSetSnapshotProp"}},
             {request(0x03, 0x02, own, sizeof read, {}, bytesOf(written)), {"SLSetLDProperties", "SLSetSnapshotProp"}}},
            [&, f = flags] { return SLSetSnapshotProp(kCont, kLd, f.first, f.second); });
    }
}

TEST_F(WireOperations, DedicatedSpareServesEverySpanOfTheLd) {
    const std::pair<std::uint8_t, std::uint8_t> cases[] = {{1, 1}, {2, 2}, {8, 8}, {255, 8}};
    for (const auto& [spans, sent] : cases) {
        _SL_ARRAY_INFO_T array{};
        array.ldCount = 1;
        array.ldTargetId[0] = kLd;
        _MR_LD_INFO ld{};
        ld.config.spanDepth = spans;
        _SL_DEDICATED_SPARE_T served{};
        served.arrayCount = sent;
        for (std::uint16_t k = 0; k < std::size(ld.config.span); ++k) {
            ld.config.span[k].arrayRef = static_cast<std::uint16_t>(0x5100 + k);
            if (k < sent)
                served.arrayRef[k] = ld.config.span[k].arrayRef;
        }
        const Bytes block = bytesOf(served);
        const std::string name = "SLMakeDedicatedHotspare";
        auto [steps, ref] = resolve(name, kPdSeq);
        steps.insert(steps.begin(), {request(0x03, 0x00, kLd, sizeof ld, bytesOf(ld)), {"SLGetLDInfo", name}});
        steps.insert(steps.begin(),
                     {request(0x04, 0x08, 0x5100, sizeof array, bytesOf(array)), {"SLGetArrayInfo", name}});
        const std::string heading = "func=" + name + ": contNo=1 ,slotNo=200, arrayRef=20736\n";
        steps.push_back({request(0x02, 0x0B, ref, sizeof served, {}, block), {name}, heading + dumpText(block), true});
        check(name, steps, [] { return SLMakeDedicatedHotspare(kCont, kSlot, 0x5100); });
    }
}

TEST_F(WireOperations, DedicatedSpareIsRefusedWhereTheLdLiesOnOtherArrays) {
    const struct {
        std::uint8_t lds, spans;
        std::uint16_t asked;
    } cases[] = {{0, 2, 0x5100}, {1, 2, 0x1122}, {1, 2, 0x5102}, {1, 0, 0x5100}};
    for (const auto& c : cases) {
        _SL_ARRAY_INFO_T array{};
        array.ldCount = c.lds;
        array.ldTargetId[0] = kLd;
        _MR_LD_INFO ld{};
        ld.config.spanDepth = c.spans;
        for (std::uint16_t k = 0; k < std::size(ld.config.span); ++k)
            ld.config.span[k].arrayRef = static_cast<std::uint16_t>(0x5100 + k);
        script.expect(request(0x04, 0x08, c.asked, sizeof array, bytesOf(array)));
        if (c.lds > 0)
            script.expect(request(0x03, 0x00, kLd, sizeof ld, bytesOf(ld)));
        EXPECT_EQ(0x0CU, SLMakeDedicatedHotspare(kCont, kSlot, c.asked)) << c.asked;
        script.finish();
        EXPECT_EQ(statusLine("SLMakeDedicatedHotspare", 0x0C), log.take()) << c.asked;
    }
}

// The walk over an LD's drives that asks each of them, and its copy-back partner, whether it is at work.
using Ids = std::vector<std::uint16_t>;
constexpr std::uint16_t kNone = 0xFFFF;
constexpr char kWalk[] = "SLIsDuringRebuildCopyback";

/// The drives 10, 11, ... with their progress bits, partner and state. There is no drive 99.
const struct {
    std::uint32_t active;
    std::uint16_t partner, state;
} kDrives[] = {{0, kNone, 0x18}, {1, kNone, 0x14},       {0, 13, 0x18}, {0, kNone, 0x20},
               {0, 99, 0x18},    {0xFFFFFFFE, 10, 0x14}, {0, 11, 0x20}, {0x80000001, 99, 0x18}};

Step readDrives(std::uint16_t count, const Ids& ids) {
    _SL_PD_IN_LD_T list{};
    list.count = count;
    std::fill(std::begin(list.deviceId), std::end(list.deviceId), kNone);
    std::copy(ids.begin(), ids.end(), list.deviceId);
    return {request(0x03, 0x0B, kLd, sizeof list, bytesOf(list)), {"SLGetPDInLD", kWalk}};
}

/// The requests by which a drive is looked at, of one that is not there the first.
void visit(std::vector<Step>& steps, std::uint16_t deviceId) {
    std::vector<_MR_PD_ADDRESS> devices;
    for (std::uint16_t i = 0; i < std::size(kDrives); ++i)
        devices.push_back(device(static_cast<std::uint16_t>(10 + i), static_cast<std::uint8_t>(210 + i)));
    steps.push_back({pdList(devices), {"SLGetPDList", "SLGetSlotNo", kWalk}});
    if (deviceId == 99)
        return;
    _MR_PD_INFO info{};
    info.progress.active = kDrives[deviceId - 10].active;
    info.copybackPartner = kDrives[deviceId - 10].partner;
    info.fwState = kDrives[deviceId - 10].state;
    steps.push_back({pdList(devices), {"SLGetPDList", "SLGetDeviceId", "SLGetPDInfo", kWalk}});
    steps.push_back({request(0x02, 0x00, deviceId, sizeof info, bytesOf(info)), {"SLGetPDInfo", kWalk}});
}

TEST_F(WireOperations, WalkStopsAtTheFirstDriveAtWork) {
    const struct {
        const char* name;
        std::uint16_t count;
        Ids drives, visited;
        int busy;
    } cases[] = {{"an unused place between idle drives", 3, {10, kNone, 13}, {10, 13}, 0},
                 {"a drive beyond the count", 1, {10, 11}, {10}, 0},
                 {"a count beyond the room", 65535, {10}, {10}, 0},
                 {"a rebuild", 3, {10, 11, 12}, {10, 11}, 1},
                 {"a rebuild among other bits", 2, {17, 10}, {17}, 1},
                 {"a partner that copies back", 2, {12, 10}, {12, 13}, 1},
                 {"all other bits, and partners in other states", 2, {15, 16}, {15, 10, 16, 11}, 0}};
    for (const auto& c : cases) {
        std::vector<Step> steps{readDrives(c.count, c.drives)};
        for (const std::uint16_t deviceId : c.visited)
            visit(steps, deviceId);
        int busy = 7;
        check(
            c.name, steps, [&] { return SLIsDuringRebuildCopyback(kCont, kLd, &busy); },
            [&](bool succeeded) { EXPECT_EQ(succeeded ? c.busy : 7, std::exchange(busy, 7)); }, {0x04});
    }
}

TEST_F(WireOperations, MissingPartnerCountsAsNoneButMissingDriveIsAFailure) {
    const std::string missed = "!ERR func=SLGetSlotNo: contNo=1, deviceId=99\n";
    for (const bool partner : {true, false}) {
        std::vector<Step> steps{readDrives(2, {static_cast<std::uint16_t>(partner ? 14 : 99), 11})};
        for (const std::uint16_t deviceId : partner ? Ids{14, 99, 11} : Ids{99})
            visit(steps, deviceId);
        for (const Step& step : steps)
            script.expect(step.request);
        int busy = 7;
        EXPECT_EQ(partner ? 0x00U : 0x0CU, SLIsDuringRebuildCopyback(kCont, kLd, &busy));
        EXPECT_EQ(partner ? 1 : 7, busy);
        script.finish();
        EXPECT_EQ(missed + (partner ? "" : statusLine(kWalk, 0x0C)), log.take());
    }
}

} // namespace
} // namespace zebtest
