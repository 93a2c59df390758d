// The controller command that adds arrays and LDs: what it refuses, what it makes, and that it does so whole or not at
// all.
#include <functional>

#include <gmock/gmock.h>

#include "storelib/records/physical_drive.h"
#include "tests/simulator/simulated.h"
#include "tests/support/sandbox.h"

namespace zebtest {
namespace {

constexpr std::uint32_t kAddConfiguration = 0x04020000;
constexpr std::uint64_t kDriveBlocks = 1000000;

/// LD 0 (RAID5) lies on half of array 0 with drives 0 to 2; LD 7 fills array 3 with drive 3. Drives 4 to 9 are free
/// (slot + 8 is the device id, slot + 10 the sequence number); 10 to 16 each have a fault.
constexpr char kScenario[] = R"({"controllers": [{"id": 9, "maxLds": 6, "raidLevels": "0x27",
    "cacheBackup": {}, "drives": [{"repeat": 10, "blocks": 1000000}, {"blocks": 999999}, {"interface": "SATA", "blocks": 1000000},
    {"blocks": 1000000, "clear": 5}, {"blocks": 1000000, "foreign": true}, {"blocks": 1000000, "state": "bad"},
    {"blocks": 1000000}, {"media": "SSD", "blocks": 1000000}],
    "arrays": [{"drives": [0, 1, 2]}, {"ref": 3, "drives": [3]}],
    "lds": [{"level": 5, "spans": [{"blocks": 500000}]}, {"id": 7, "spans": [{"array": 3}]}], "spares": [{"drive": 15}]}]})";

/// The block of the command: its arrays, its LDs and what its head says of them.
struct Block {
    std::vector<_MR_ARRAY> arrays;
    std::vector<_MR_LD_CONFIG> lds;
    std::function<void(_MR_CONFIG_DATA&)> spoil = [](_MR_CONFIG_DATA&) {};

    Bytes bytes() const {
        _MR_CONFIG_DATA head{};
        head.arrayCount = static_cast<std::uint16_t>(arrays.size());
        head.arraySize = sizeof(_MR_ARRAY);
        head.ldCount = static_cast<std::uint16_t>(lds.size());
        head.ldSize = sizeof(_MR_LD_CONFIG);
        head.spareSize = sizeof(_MR_SPARE);
        head.size = static_cast<std::uint32_t>(sizeof head + arrays.size() * sizeof(_MR_ARRAY) +
                                               lds.size() * sizeof(_MR_LD_CONFIG));
        Bytes all(head.size);
        spoil(head);
        std::memcpy(all.data(), &head, sizeof head);
        if (!arrays.empty())
            std::memcpy(all.data() + sizeof head, arrays.data(), arrays.size() * sizeof(_MR_ARRAY));
        if (!lds.empty())
            std::memcpy(all.data() + sizeof head + arrays.size() * sizeof(_MR_ARRAY), lds.data(),
                        lds.size() * sizeof(_MR_LD_CONFIG));
        return all;
    }
};

_MR_ARRAY array(std::uint16_t ref, const std::vector<unsigned>& slots) {
    _MR_ARRAY record{};
    record.size = kDriveBlocks;
    record.arrayRef = ref;
    record.numDrives = static_cast<std::uint8_t>(slots.size());
    std::memset(record.pd, 0xFF, sizeof record.pd);
    for (std::size_t i = 0; i < slots.size(); ++i)
        record.pd[i].ref = {static_cast<std::uint16_t>(slots[i] + 8), static_cast<std::uint16_t>(slots[i] + 10)};
    return record;
}

_MR_LD_CONFIG ld(std::uint8_t id, std::uint8_t level, const std::vector<std::uint16_t>& refs, std::uint8_t width,
                 std::uint64_t start = 0, std::uint64_t blocks = kDriveBlocks) {
    _MR_LD_CONFIG record{};
    record.properties.ref.targetId = id;
    std::snprintf(record.properties.name, sizeof record.properties.name, "LD_%u", unsigned{id});
    record.primaryRaidLevel = level;
    record.stripeSize = 7;
    record.numDrives = width;
    record.spanDepth = static_cast<std::uint8_t>(refs.size());
    record.state = kLdOptimal;
    for (std::size_t i = 0; i < refs.size() && i < kMaxSpans; ++i)
        record.span[i] = {start, blocks, refs[i], {}};
    return record;
}

/// LDs of one stripe each, one behind the other on array 1 of one drive.
std::vector<_MR_LD_CONFIG> smallLds(unsigned count) {
    std::vector<_MR_LD_CONFIG> lds;
    for (unsigned i = 0; i < count; ++i)
        lds.push_back(ld(static_cast<std::uint8_t>(10 + i), 0, {1}, 1, std::uint64_t{i} * 128, 128));
    return lds;
}

/// A RAID5 of drives 4 to 6 that is as it should be.
Block good() {
    return {{array(1, {4, 5, 6})}, {ld(1, 5, {1}, 3)}};
}

class Creation : public SimulatorTest {
  protected:
    std::uint32_t add(SimulatedRun& run, const Block& block) {
        Bytes bytes = block.bytes();
        return run.dcmd(kAddConfiguration, kDcmdToController, bytes);
    }
};

struct Refusal {
    const char* name;
    std::uint32_t status;
    Block block;
};

Block changed(const std::function<void(Block&)>& change) {
    Block block = good();
    change(block);
    return block;
}

TEST_F(Creation, RefusalsChangeNothing) {
    const std::vector<Refusal> refusals{
        {"size word", 0x03, changed([](Block& b) { b.spoil = [](_MR_CONFIG_DATA& h) { h.size -= 8; }; })},
        {"array count", 0x03, changed([](Block& b) { b.spoil = [](_MR_CONFIG_DATA& h) { ++h.arrayCount; }; })},
        {"array size", 0x03, changed([](Block& b) { b.spoil = [](_MR_CONFIG_DATA& h) { h.arraySize = 256; }; })},
        {"LD size", 0x03, changed([](Block& b) { b.spoil = [](_MR_CONFIG_DATA& h) { h.ldSize = 288; }; })},
        {"spare size", 0x03, changed([](Block& b) { b.spoil = [](_MR_CONFIG_DATA& h) { h.spareSize = 0; }; })},
        {"no array", 0x03, {{}, {ld(1, 5, {0}, 3, 500000, 500000)}}},
        {"no LD", 0x03, {{array(1, {4, 5, 6})}, {}}},
        {"span depth 0", 0x03, changed([](Block& b) { b.lds[0].spanDepth = 0; })},
        {"span depth 9", 0x03, changed([](Block& b) { b.lds[0].spanDepth = 9; })},
        {"array of no drives", 0x03, changed([](Block& b) { b.arrays[0].numDrives = 0; })},
        {"array of 33 drives", 0x03, changed([](Block& b) { b.arrays[0].numDrives = 33; })},
        {"drives per span", 0x03, changed([](Block& b) { b.lds[0].numDrives = 4; })},
        {"array that no LD uses", 0x03, changed([](Block& b) {
             b.arrays.push_back(array(2, {7, 8, 9}));
         })},
        {"array that is nowhere", 0x09, changed([](Block& b) { b.lds.push_back(ld(2, 5, {2}, 3)); })},
        {"array 128", 0x0B, {{array(128, {4, 5, 6})}, {ld(1, 5, {128}, 3)}}},
        {"array that others have", 0x0B, {{array(0, {4, 5, 6})}, {ld(1, 5, {0}, 3)}}},
        {"array in another order", 0x0B, {{array(0, {1, 0, 2})}, {ld(1, 5, {0}, 3, 500000, 500000)}}},
        {"LD that is there", 0x0B, changed([](Block& b) { b.lds[0].properties.ref.targetId = 7; })},
        {"LD twice", 0x0B, {{array(1, {4, 5, 6})}, {ld(1, 5, {1}, 3, 0, 128), ld(1, 5, {1}, 3, 128, 128)}}},
        {"LD 64", 0x0B, changed([](Block& b) { b.lds[0].properties.ref.targetId = 64; })},
        {"drive twice", 0x0B, {{array(1, {4, 5, 4})}, {ld(1, 5, {1}, 3)}}},
        {"drive in two arrays", 0x0B, {{array(1, {4, 5}), array(2, {5, 6})}, {ld(1, 1, {1, 2}, 2)}}},
        {"spans that overlap", 0x0B, {{array(1, {4, 5, 6})}, {ld(1, 5, {1}, 3, 0, 256), ld(2, 5, {1}, 3, 255, 1)}}},
        {"span on another LD", 0x0B, {{array(0, {0, 1, 2})}, {ld(1, 5, {0}, 3, 499999, 500001)}}},
        {"span beyond the array", 0x0B, {{array(1, {4, 5, 6})}, {ld(1, 5, {1}, 3, 1, kDriveBlocks)}}},
        {"span that wraps round", 0x0B, {{array(1, {4, 5, 6})}, {ld(1, 5, {1}, 3, 8, UINT64_MAX)}}},
        {"span of nothing", 0x0B, {{array(1, {4, 5, 6})}, {ld(1, 5, {1}, 3, 0, 0)}}},
        {"unknown drive", 0x0C, {{array(1, {4, 5, 60})}, {ld(1, 5, {1}, 3)}}},
        {"stale drive", 0x04, changed([](Block& b) { ++b.arrays[0].pd[2].ref.seqNo; })},
        {"stale drive of an array that is there", 0x04, {[] {
             Block b{{array(0, {0, 1, 2})}, {ld(1, 5, {0}, 3, 500000, 500000)}};
             --b.arrays[0].pd[1].ref.seqNo;
             return b;
         }()}},
        {"drive that is cleared", 0x25, {{array(1, {4, 5, 12})}, {ld(1, 5, {1}, 3)}}},
        {"foreign drive", 0x32, {{array(1, {4, 5, 13})}, {ld(1, 5, {1}, 3)}}},
        {"bad drive", 0x32, {{array(1, {4, 5, 14})}, {ld(1, 5, {1}, 3)}}},
        {"hot spare", 0x32, {{array(1, {4, 5, 15})}, {ld(1, 5, {1}, 3)}}},
        {"drive of an LD", 0x32, {{array(1, {4, 5, 0})}, {ld(1, 5, {1}, 3)}}},
        {"SAS and SATA", 0x26, {{array(1, {4, 5, 11})}, {ld(1, 5, {1}, 3)}}},
        {"small drive", 0x0D, {{array(1, {4, 5, 10})}, {ld(1, 5, {1}, 3)}}},
        {"level 6 is not built", 0x1E, changed([](Block& b) { b.lds[0].primaryRaidLevel = 6; })},
        {"level 3", 0x1E, changed([](Block& b) { b.lds[0].primaryRaidLevel = 3; })},
        {"RAID1 of three", 0x1E, changed([](Block& b) { b.lds[0].primaryRaidLevel = 1; })},
        {"RAID5 of two", 0x1E, {{array(1, {4, 5})}, {ld(1, 5, {1}, 2)}}},
        {"RAID10 of three per span", 0x1E, {{array(1, {4, 5, 6}), array(2, {7, 8, 9})}, {ld(1, 1, {1, 2}, 3)}}},
        {"RAID0 in two spans", 0x1E, {{array(1, {4, 5}), array(2, {6, 7})}, {ld(1, 0, {1, 2}, 2)}}},
        {"seven LDs of six", 0x1A, {{array(1, {4})}, smallLds(5)}},
    };
    SimulatedRun run(onState(kScenario));
    ASSERT_EQ(0U, run.status) << run.complaint;
    const std::string before = readFile(state());
    for (const Refusal& refusal : refusals) {
        SCOPED_TRACE(refusal.name);
        EXPECT_EQ(refusal.status, add(run, refusal.block));
        EXPECT_EQ(before, readFile(state()));
    }
    EXPECT_EQ(0U, add(run, good()));
}

TEST_F(Creation, MakesWhatItSays) {
    Block block{{array(1, {4, 5, 6}), array(4, {7, 8}), array(5, {9, 16})},
                {ld(1, 5, {1}, 3, 0, 400000), ld(2, 5, {1}, 3, 400000, 600000), ld(6, 1, {4, 5}, 2)}};
    block.lds[0].initState = 1;
    block.lds[0].properties.defaultCachePolicy = 0x65;
    block.lds[0].properties.diskCachePolicy = 2;
    block.lds[1].properties.noBgi = 1;
    block.lds[2].cacheCade = 1;
    Bytes kept;
    Bytes made;
    {
        SimulatedRun run(onState(kScenario));
        ASSERT_EQ(0U, run.status) << run.complaint;
        kept = run.configuration();
        ASSERT_EQ(0U, add(run, block));
        const auto member = run.read<_MR_PD_INFO>(kPdInfo, 8 + 4);
        EXPECT_EQ(kPdOnline, member.fwState);
        EXPECT_EQ(10 + 4 + 1, member.ref.seqNo);
        EXPECT_EQ(kDdfInLd, member.ddfType & 0x0FFF);
        const auto first = run.read<_MR_LD_INFO>(kLdInfo, 1);
        EXPECT_EQ(1, first.config.properties.ref.seqNo);
        EXPECT_STREQ("LD_1", first.config.properties.name);
        EXPECT_EQ(0x65, first.config.properties.defaultCachePolicy);
        EXPECT_EQ(0x65, first.config.properties.currentCachePolicy);
        EXPECT_EQ(5, first.config.primaryRaidLevel);
        EXPECT_EQ(1, first.config.initState);
        EXPECT_EQ(kLdOptimal, first.config.state);
        EXPECT_EQ(800000U, first.size);
        EXPECT_EQ(kLdProgBgi, first.progress.active);
        EXPECT_EQ(0U, run.read<_MR_LD_INFO>(kLdInfo, 2).progress.active);
        const auto mirrored = run.read<_MR_LD_INFO>(kLdInfo, 6);
        EXPECT_EQ(1, mirrored.config.primaryRaidLevel);
        EXPECT_EQ(3, mirrored.config.secondaryRaidLevel);
        EXPECT_EQ(2, mirrored.config.spanDepth);
        EXPECT_EQ(1, mirrored.config.cacheCade);
        EXPECT_EQ(5, mirrored.config.span[1].arrayRef);
        EXPECT_EQ(2 * kDriveBlocks, mirrored.size);
        made = run.configuration();
    }
    SimulatedRun next(onState(kScenario));
    EXPECT_EQ(made, next.configuration()) << "the state file says something else";
    EXPECT_EQ(kept.size() + 3 * sizeof(_MR_ARRAY) + 3 * sizeof(_MR_LD_CONFIG), made.size());
    const auto arrayAt = [](Bytes& all, std::size_t place) {
        const auto* at = all.data() + sizeof(_MR_CONFIG_DATA) + place * sizeof(_MR_ARRAY);
        return Bytes(at, at + sizeof(_MR_ARRAY));
    };
    EXPECT_EQ(arrayAt(kept, 0), arrayAt(made, 0)) << "arrays stand by reference, the old ones as they were";
    EXPECT_EQ(arrayAt(kept, 1), arrayAt(made, 2));
}

TEST_F(Creation, AddsToTheFreeSpaceOfAnArrayThatIsThere) {
    SimulatedRun run(onState(kScenario));
    ASSERT_EQ(0U, add(run, {{array(0, {0, 1, 2})}, {ld(1, 5, {0}, 3, 500000, 500000)}}));
    EXPECT_EQ(10, run.read<_MR_PD_INFO>(kPdInfo, 8).ref.seqNo) << "no new member, no new number";
    EXPECT_EQ(1000000U, run.read<_MR_LD_INFO>(kLdInfo, 1).size);
}

TEST_F(Creation, ForeignSizesAndDirections) {
    SimulatedRun run(onState(kScenario));
    Bytes bytes = good().bytes();
    EXPECT_EQ(0x8104U, run.dcmd(kAddConfiguration, kDcmdFromController, bytes));
    Bytes head(bytes.begin(), bytes.begin() + 31);
    EXPECT_EQ(0x800CU, run.dcmd(kAddConfiguration, kDcmdToController, head));
}

TEST_F(Creation, PinnedCacheForbidsEveryChangeOfTheConfiguration) {
    std::string pinned = kScenario;
    pinned.replace(pinned.find("\"maxLds\""), 0, "\"pinnedCache\": true, ");
    SimulatedRun run(onState(pinned));
    EXPECT_EQ(0x54U, add(run, good()));
    EXPECT_EQ(0x54U, run.send(kDeleteLd, reference(7, 39)));
    EXPECT_EQ(0x04U, run.send(kDeleteLd, reference(7, 38)));
}

TEST_F(Creation, WithoutASavedStateNothingHasHappened) {
    SimulatedRun run(onState(kScenario));
    const Bytes before = run.configuration();
    std::filesystem::create_directory(state() + ".tmp"); // the file cannot be written beside itself
    EXPECT_EQ(0x8017U, add(run, good()));
    EXPECT_EQ(0x8017U, run.send(kDeleteLd, reference(7, 39))) << "a command without data goes back too";
    EXPECT_EQ(before, run.configuration());
}

TEST_F(Creation, StrictDeletionWaitsForChecksAndRebuilds) {
    const std::string busy =
        R"({"strictDelete": true, "controllers": [{"drives": [{"repeat": 2}, {"repeat": 2, "slot": 4}],
        "arrays": [{"drives": [0, 1]}, {"drives": [4, 5]}],
        "lds": [{"level": 1, "spans": [{}], "check": 10}, {"level": 1, "spans": [{"array": 1}]}]}]})";
    std::string strict = busy;
    strict.replace(strict.find("\"slot\": 4"), 9, "\"slot\": 4, \"rebuild\": 20");
    {
        SimulatedRun run(onState(strict));
        EXPECT_EQ(0x32U, run.send(kDeleteLd, reference(0, 32)));
        EXPECT_EQ(0x1CU, run.send(kDeleteLd, reference(1, 33)));
    }
    std::filesystem::remove(state());
    SimulatedRun lenient(onState(strict.replace(strict.find("true"), 4, "false")));
    EXPECT_EQ(0U, lenient.send(kDeleteLd, reference(0, 32)));
    EXPECT_EQ(0U, lenient.send(kDeleteLd, reference(1, 33)));
}

} // namespace
} // namespace zebtest
