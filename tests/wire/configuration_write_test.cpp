// The request that adds to the configuration: what is read for it, what it carries, and what a failure at each step
// leaves.
#include "storelib/common/StoreLib/configuration_write.h"
#include "tests/support/wire.h"

namespace zebtest {
namespace {

constexpr std::uint32_t kAddConfiguration = 0x04020000;
constexpr std::uint8_t kFirstSlot = 7;

/// A drive as the library tells of it: no two of them, and no two fields, are alike.
_MR_PD_INFO driveIn(std::uint8_t slotNo) {
    _MR_PD_INFO pd{};
    pd.ref = {static_cast<std::uint16_t>(0x0300 + slotNo), static_cast<std::uint16_t>(0x5100 + slotNo)};
    pd.coercedSize = 0x10000000U - slotNo;
    pd.enclIndex = 3;
    pd.slotNo = slotNo;
    return pd;
}

struct Creation : WireTest {
    Creation() {
        plan.arrayCount = 1;
        PlannedArray& group = plan.array[0];
        group.level = kRaid1;
        group.ldCount = 1;
        group.arrayRef[0] = 0x0102;
        for (std::uint8_t slotNo = kFirstSlot; slotNo < kFirstSlot + 2; ++slotNo)
            group.slotNo[group.pdCount++] = slotNo;
        group.ld[0].ldNo = 9;
        group.ld[0].blocksPerPd = 0x1000;
    }

    /// The requests for the plan; the list of drives and the information of each come before the send.
    std::vector<ExpectedRequest> requests(const Bytes& block) const {
        std::vector<_MR_PD_ADDRESS> devices;
        for (std::uint8_t slotNo = kFirstSlot; slotNo < kFirstSlot + 2; ++slotNo)
            devices.push_back(device(driveIn(slotNo).ref.deviceId, slotNo));
        std::vector<ExpectedRequest> all;
        for (std::uint8_t slotNo = kFirstSlot; slotNo < kFirstSlot + 2; ++slotNo) {
            all.push_back(pdList(devices));
            all.push_back(
                request(0x02, 0x00, driveIn(slotNo).ref.deviceId, sizeof(_MR_PD_INFO), bytesOf(driveIn(slotNo))));
        }
        all.push_back(request(0, 0, 0, static_cast<std::uint32_t>(block.size())));
        all.back().dcmd = DcmdInput{kAddConfiguration, 1, {}};
        all.back().sends = block;
        return all;
    }

    /// What goes out: one array as given, and the LD.
    static Bytes blockOf(const _MR_ARRAY& array) {
        struct [[gnu::packed]] {
            _MR_CONFIG_DATA head;
            _MR_ARRAY array;
            _MR_LD_CONFIG ld;
        } block{};
        block.head.size = sizeof block;
        block.head.arrayCount = block.head.ldCount = 1;
        block.head.arraySize = sizeof(_MR_ARRAY);
        block.head.ldSize = sizeof(_MR_LD_CONFIG);
        block.head.spareSize = sizeof(_MR_SPARE);
        block.array = array;
        block.ld.properties.ref.targetId = 9;
        block.ld.primaryRaidLevel = 1;
        block.ld.numDrives = 2;
        block.ld.spanDepth = 1;
        block.ld.state = kLdOptimal;
        block.ld.span[0] = {0, 0x1000, 0x0102, {}};
        return bytesOf(block);
    }

    /// Calls the wrapper with all requests succeeding, then with each failing in turn. A success is told as well.
    void checkEach(const std::string& name, const Bytes& block, const std::function<std::uint32_t()>& call) {
        const auto all = requests(block);
        for (std::size_t failed = 0; failed <= all.size(); ++failed) {
            SCOPED_TRACE(name + ", request " + std::to_string(failed + 1));
            for (std::size_t i = 0; i < all.size() && i <= failed; ++i)
                script.expect(i == failed ? failing(all[i], 0x04) : all[i]);
            EXPECT_EQ(failed < all.size() ? 4U : 0U, call());
            script.finish();
            const std::string trace = log.take();
            EXPECT_TRUE(trace.ends_with(statusLine(name, failed < all.size() ? 4 : 0))) << trace;
            EXPECT_EQ(failed + 1 >= all.size(),
                      trace.find("func=" + name + ": contNo=1\n" + dumpText(block).substr(0, 140)) != trace.npos)
                << trace;
            EXPECT_EQ(failed + 1 >= all.size(), trace.find("func=" + name + ": DcmdInput >\n") != trace.npos) << trace;
        }
    }

    _SL_CREATE_LD_INFO_T plan{};
};

TEST_F(Creation, NewArraysHoldTheDrivesAsTheyAreNow) {
    _MR_ARRAY array{};
    array.size = driveIn(kFirstSlot + 1).coercedSize;
    array.numDrives = 2;
    array.arrayRef = 0x0102;
    for (_MR_ARRAY_PD& place : array.pd)
        place.ref.deviceId = kNoDevice;
    for (std::uint8_t i = 0; i < 2; ++i)
        array.pd[i] = {driveIn(static_cast<std::uint8_t>(kFirstSlot + i)).ref, kPdOnline, 3,
                       static_cast<std::uint8_t>(kFirstSlot + i)};
    checkEach(
        "SLCreateLD", blockOf(array), [&] { return SLCreateLD(kCont, &plan); });
    checkEach("SLCreateCacheCadeLD", blockOf(array), [&] { return SLCreateCacheCadeLD(kCont, &plan); });
}

TEST_F(Creation, ArraysThatAreThereKeepAllButTheSequenceNumbers) {
    _MR_ARRAY array{};
    const Bytes random = randomBytes(8, sizeof array);
    std::memcpy(&array, random.data(), sizeof array);
    array.numDrives = 3;
    array.pd[0].ref.deviceId = driveIn(kFirstSlot).ref.deviceId;
    array.pd[1].ref.deviceId = kNoDevice;
    array.pd[2].ref.deviceId = driveIn(kFirstSlot + 1).ref.deviceId;
    _MR_ARRAY written = array;
    written.pd[0].ref.seqNo = driveIn(kFirstSlot).ref.seqNo;
    written.pd[2].ref.seqNo = driveIn(kFirstSlot + 1).ref.seqNo;
    Bytes block = blockOf(written);
    block[sizeof(_MR_CONFIG_DATA) + sizeof(_MR_ARRAY) + offsetof(_MR_LD_CONFIG, numDrives)] =
        3; // drives of a span, as the array has them
    checkEach("SLAddLDToRG", block, [&] { return SLAddLDToRG(kCont, &plan, std::span(&array, 1)); });

    array.pd[2].ref.deviceId = 0x0BAD; // another drive than the plan's stands there
    const auto all = requests(block);
    for (std::size_t i = 0; i + 1 < all.size(); ++i)
        script.expect(all[i]);
    EXPECT_EQ(0x0CU, SLAddLDToRG(kCont, &plan, std::span(&array, 1)));
    script.finish();
    EXPECT_EQ(statusLine("SLAddLDToRG", 0x0C), log.take());
}

} // namespace
} // namespace zebtest
