// Queries: what each sends, and what it makes of the answer.
#include <cstring>
#include <span>
#include <sys/mman.h>

#include "main/zebcli_cmd_com/model/live_questions.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"
#include "storelib/common/StoreLib/cache_backup.h"
#include "storelib/common/StoreLib/configuration.h"
#include "storelib/common/StoreLib/controller.h"
#include "storelib/common/StoreLib/enclosure.h"
#include "storelib/common/StoreLib/logical_drive.h"
#include "storelib/common/StoreLib/physical_drive.h"
#include "tests/support/wire.h"

namespace zebtest {
namespace {

constexpr std::uint16_t kArray = 0x0105;
constexpr std::uint16_t kEncl = 0x0203;
constexpr std::uint32_t kConfig = 1001;
constexpr std::uint8_t kOld = 0xE7;
constexpr bool kZeroed = true;
constexpr bool kAsGiven = false;
constexpr std::size_t kNothingSorted = SIZE_MAX;

Call onConfig(std::uint32_t (*wrapper)(unsigned char, _MR_CONFIG_DATA*, std::uint32_t)) {
    return {kConfig, [=](void* data) { return wrapper(kCont, static_cast<_MR_CONFIG_DATA*>(data), kConfig); }};
}

const struct Query {
    const char* name;
    std::uint8_t type, cmd;
    std::uint32_t ref;
    bool zeroed;
    Call call;
    std::size_t countAt = kNothingSorted; // where the count stands by which the answer is sorted
} kQueries[] = {
    {"SLGetCtrlInfo", 0x01, 0x00, 0, kZeroed, on(SLGetCtrlInfo)},
    {"SLGetCtrlProp", 0x01, 0x01, 0, kZeroed, on(SLGetCtrlProp)},
    {"SLGetPDList", 0x01, 0x04, 0, kAsGiven, on(SLGetPDList), offsetof(_MR_PD_LIST, count)},
    {"SLGetEnclList", 0x01, 0x05, 0, kAsGiven, on(SLGetEnclList)},
    {"SLGetPciInfo", 0x01, 0x0B, 0, kAsGiven, on(SLGetPciInfo)},
    {"SLGetLDList", 0x01, 0x0D, 0, kZeroed, on(SLGetLDList), offsetof(_MR_LD_LIST, count)},
    {"SLGetPatrolReadProp", 0x01, 0x0F, 0, kAsGiven, on(SLGetPatrolReadProp)},
    {"SLGetDrvVer", 0x01, 0x13, 0, kAsGiven, on(SLGetDrvVer)},
    {"SLGetPDInfo", 0x02, 0x00, kDevice, kZeroed, on(SLGetPDInfo, kSlot)},
    {"SLGetPdProggress", 0x02, 0x07, kDevice, kAsGiven, on(SLGetPdProggress, kSlot)},
    {"SLGetPDAllowedOperation", 0x02, 0x14, kDevice, kAsGiven, on(SLGetPDAllowedOperation, kSlot)},
    {"SLGetLDInfo", 0x03, 0x00, kLd, kAsGiven, on(SLGetLDInfo, kLd)},
    {"SLGetLDProperties", 0x03, 0x01, kLd, kAsGiven, on(SLGetLDProperties, kLd)},
    {"SLGetLdProggress", 0x03, 0x08, kLd, kAsGiven, on(SLGetLdProggress, kLd)},
    {"SLGetPDInLD", 0x03, 0x0B, kLd, kAsGiven, on(SLGetPDInLD, kLd)},
    {"SLGetLDAllowedOperation", 0x03, 0x0E, kLd, kAsGiven, on(SLGetLDAllowedOperation, kLd)},
    {"SLReadConfig", 0x04, 0x00, 0, kZeroed, onConfig(SLReadConfig), offsetof(_MR_CONFIG_DATA, ldCount)},
    {"SLScanForForeignConfig", 0x04, 0x03, 0, kAsGiven, on(SLScanForForeignConfig)},
    {"SLReadConfigAfterImport", 0x04, 0x05, ~0U, kAsGiven, onConfig(SLReadConfigAfterImport),
     offsetof(_MR_CONFIG_DATA, ldCount)},
    {"SLGetArrayInfo", 0x04, 0x08, kArray, kAsGiven, on(SLGetArrayInfo, kArray)},
    {"SLGetCacheBkupStatus", 0x05, 0x00, 0, kAsGiven, on(SLGetCacheBkupStatus)},
    {"SLGetCacheBkupCapacityInfo", 0x05, 0x01, 0, kAsGiven, on(SLGetCacheBkupCapacityInfo)},
    {"SLGetCacheBkupDesignInfo", 0x05, 0x02, 0, kAsGiven, on(SLGetCacheBkupDesignInfo)},
    {"SLGetCacheBkupProperties", 0x05, 0x04, 0, kAsGiven, on(SLGetCacheBkupProperties)},
    {"SLGetEnclConfig", 0x08, 0x00, kEncl, kAsGiven, on(SLGetEnclConfig, kEncl)},
    {"SLGetEnclStatus", 0x08, 0x05, kEncl, kAsGiven, on(SLGetEnclStatus, kEncl)},
};

using WireQueries = WireTest;

/// A block that ends at a page which nobody may touch: one byte too many ends the test.
class GuardedBlock {
  public:
    explicit GuardedBlock(std::size_t size) : size_(size), room_((size + kPage - 1) / kPage * kPage) {
        mapped_ = static_cast<std::uint8_t*>(
            mmap(nullptr, room_ + kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0));
        mprotect(mapped_ + room_, kPage, PROT_NONE);
    }
    ~GuardedBlock() { munmap(mapped_, room_ + kPage); }
    GuardedBlock(const GuardedBlock&) = delete;
    GuardedBlock& operator=(const GuardedBlock&) = delete;
    std::span<std::uint8_t> bytes() const { return {mapped_ + room_ - size_, size_}; }

  private:
    static constexpr std::size_t kPage = 4096;
    std::size_t size_, room_;
    std::uint8_t* mapped_;
};

TEST_F(WireQueries, SendTheirRequestAndHandBackTheAnswerAsItCame) {
    std::uint32_t seed = 0;
    for (const Query& query : kQueries) {
        Bytes answer = randomBytes(++seed, query.call.size);
        if (query.countAt != kNothingSorted)
            std::fill_n(answer.begin() + static_cast<std::ptrdiff_t>(query.countAt), 4, std::uint8_t{0});
        const Bytes untouched(query.call.size, query.zeroed ? std::uint8_t{0} : kOld);
        std::vector<Step> steps;
        if (query.ref == kDevice)
            steps.push_back({pdList({device(kDevice, kSlot)}), {"SLGetPDList", "SLGetDeviceId", query.name}});
        steps.push_back({request(query.type, query.cmd, query.ref, query.call.size, answer, untouched), {query.name}});
        const GuardedBlock block(query.call.size);
        const std::span<std::uint8_t> data = block.bytes();
        check(
            query.name, steps,
            [&] {
                std::fill(data.begin(), data.end(), kOld);
                return query.call(data.data());
            },
            [&](bool succeeded) { EXPECT_EQ(succeeded ? answer : untouched, Bytes(data.begin(), data.end())); });
    }
}

TEST_F(WireQueries, SlotWithoutDiskIsNotAskedFor) {
    ExpectedRequest list = pdList({device(1, kSlot, 0x0D), device(2, kSlot - 1), device(3, kSlot)});
    list.answer[offsetof(_MR_PD_LIST, count)] = 2; // the third is beyond the count
    for (const Query& query : kQueries)
        if (query.ref == kDevice) {
            Bytes data(query.call.size);
            script.expect(list);
            EXPECT_EQ(0x0CU, query.call(data.data())) << query.name;
            EXPECT_TRUE(
                sameText(log.take(), "!ERR func=SLGetDeviceId: contNo=1, slotNo=200\n" + statusLine(query.name, 0x0C)));
        }
}

// Queries that work on the answer before they hand it back.

template <class Number>
void put(Bytes& bytes, std::size_t at, Number number) {
    std::memcpy(bytes.data() + at, &number, sizeof number);
}

TEST_F(WireQueries, ListsAreSortedAsFarAsTheyReach) {
    for (const std::uint32_t count : {0U, 1U, 3U, 255U, 256U, 257U, 65535U, 0xFFFFFFFFU}) {
        SCOPED_TRACE(count);
        _MR_PD_LIST pds{};
        Bytes bytes = randomBytes(count, sizeof pds);
        put(bytes, offsetof(_MR_PD_LIST, count), count);
        pass({request(0x01, 0x04, 0, sizeof pds, bytes)}, [&] { return SLGetPDList(kCont, &pds); });
        _MR_PD_ADDRESS* const end = pds.addr + std::min<std::size_t>(count, std::size(pds.addr));
        EXPECT_TRUE(std::is_sorted(pds.addr, end, [](auto& a, auto& b) { return a.slotNo < b.slotNo; }));
        const Bytes got = bytesOf(pds);
        const auto behind = reinterpret_cast<const std::uint8_t*>(end) - reinterpret_cast<std::uint8_t*>(&pds);
        EXPECT_TRUE(std::equal(got.begin() + behind, got.end(), bytes.begin() + behind));

        _MR_LD_LIST lds{};
        bytes = randomBytes(count, sizeof lds);
        put(bytes, offsetof(_MR_LD_LIST, count), count);
        pass(
            {request(0x01, 0x0D, 0, sizeof lds, bytes)}, [&] { return SLGetLDList(kCont, &lds); });
        EXPECT_TRUE(std::is_sorted(lds.ld, lds.ld + std::min(count, kMaxLds),
                                   [](auto& a, auto& b) { return a.targetId < b.targetId; }));
        unsigned char number = 0;
        pass({request(0x01, 0x0D, 0, sizeof lds, bytes)}, [&] { return SLGetLdNum(kCont, &number); });
        EXPECT_EQ(count & 0xFFU, number);
    }
}

TEST_F(WireQueries, ConfigurationSortsItsLdsOnlyInsideTheBlock) {
    constexpr std::size_t kHead = sizeof(_MR_CONFIG_DATA);
    constexpr std::size_t kLdSize = sizeof(_MR_LD_CONFIG);
    constexpr std::size_t kBehindArray = kHead + sizeof(_MR_ARRAY);
    const struct {
        std::size_t size; // bytes of the block
        std::uint16_t arrays, lds;
        std::size_t whole; // LDs that lie whole in the block
    } cases[] = {{kBehindArray + 3 * kLdSize, 1, 3, 3},     {kBehindArray + 3 * kLdSize, 1, 4, 3},
                 {kBehindArray + 3 * kLdSize - 1, 1, 3, 2}, {kHead + 5 * kLdSize, 0, 65535, 5},
                 {kSmallestConfigSize, 65535, 65535, 0},    {kHead - 1, 0, 1, 0}};
    for (const auto& c : cases) {
        const auto size = static_cast<std::uint32_t>(c.size);
        Bytes bytes = randomBytes(size, size);
        put(bytes, offsetof(_MR_CONFIG_DATA, arrayCount), c.arrays);
        put(bytes, offsetof(_MR_CONFIG_DATA, ldCount), c.lds);
        const std::size_t first = kHead + c.arrays * sizeof(_MR_ARRAY);
        for (std::size_t i = 0; i < c.whole; ++i) // target ids in descending order
            put(bytes, first + i * kLdSize + offsetof(_MR_LD_CONFIG, properties.ref.targetId),
                static_cast<std::uint8_t>(200 - i));
        Bytes wanted = bytes;
        for (std::size_t i = 0; i < c.whole; ++i)
            std::copy_n(&bytes[first + (c.whole - 1 - i) * kLdSize], kLdSize, &wanted[first + i * kLdSize]);
        Bytes block(size);
        pass({request(0x04, 0x00, 0, size, bytes)},
             [&] { return SLReadConfig(kCont, reinterpret_cast<_MR_CONFIG_DATA*>(block.data()), size); });
        EXPECT_EQ(wanted, block) << size << " bytes, " << c.lds << " LDs";
    }
}

TEST_F(WireQueries, ConfigurationSizeIsReadFromAShortRead) {
    Bytes configuration = randomBytes(7, kSmallestConfigSize);
    put(configuration, offsetof(_MR_CONFIG_DATA, size), 0xF2345678U);
    unsigned size = 7;
    const auto after = [&](bool succeeded) { EXPECT_EQ(succeeded ? 0xF2345678U : 0U, std::exchange(size, 7)); };
    check(
        "SLGetConfigSize", {{request(0x04, 0x00, 0, kSmallestConfigSize, configuration), {"SLGetConfigSize"}}},
        [&] { return SLGetConfigSize(kCont, &size); }, after);
    check(
        "SLGetForeignConfigSize",
        {{request(0x04, 0x05, ~0U, kSmallestConfigSize, configuration), {"SLGetForeignConfigSize"}}},
        [&] { return SLGetForeignConfigSize(kCont, &size); }, after);
}

TEST_F(WireQueries, LookUpsTakeTheFirstDiskOfTheSortedList) {
    const ExpectedRequest list = pdList({device(20, 9), device(10, 5), device(30, 4, 0x0D), device(10, 3),
                                         device(11, 7), device(31, 4, 0x05), device(32, 5, 0x11), device(33, 4, 0xFF)});
    const std::pair<std::uint8_t, std::uint16_t> found[] = {{5, 10}, {9, 20}, {7, 11}};
    for (const auto& [slot, id] : found) {
        std::uint16_t deviceId = 0;
        pass({list}, [&, s = slot] { return SLGetDeviceId(kCont, s, &deviceId); });
        EXPECT_EQ(id, deviceId) << int{slot};
        unsigned char slotNo = 0;
        pass({list}, [&, d = id] { return SLGetSlotNo(kCont, d, &slotNo); });
        EXPECT_EQ(id == 10 ? 3 : slot, slotNo) << id;
    }
    unsigned char slotNo = 77;
    for (std::uint16_t other = 30; other <= 33; ++other) {
        script.expect(list);
        EXPECT_EQ(0x0CU, SLGetSlotNo(kCont, other, &slotNo)) << other << " is no disk";
        EXPECT_EQ("!ERR func=SLGetSlotNo: contNo=1, deviceId=" + std::to_string(other) + "\n", log.take());
    }
    std::uint16_t deviceId = 0;
    script.expect(list);
    EXPECT_EQ(0x0CU, SLGetDeviceId(kCont, 4, &deviceId)) << "no disk is in that slot";
    EXPECT_EQ("!ERR func=SLGetDeviceId: contNo=1, slotNo=4\n", log.take());
}

TEST_F(WireQueries, SlotCountAddsOneOnlyAmongSeveralEnclosures) {
    const struct {
        std::uint32_t count;
        std::pair<std::uint8_t, std::uint8_t> first, second; // slots and type
        std::uint16_t wanted;
    } cases[] = {{1, {12, 2}, {}, 12},   {1, {12, 3}, {}, 12},       {2, {4, 3}, {8, 2}, 9},
                 {2, {4, 0}, {8, 2}, 5}, {2, {4, 3}, {8, 3}, 0},     {0, {4, 2}, {}, 0},
                 {2, {255, 1}, {}, 256}, {65535, {7, 3}, {8, 1}, 9}, {0xFFFFFFFF, {7, 2}, {}, 8}};
    for (const auto& c : cases) {
        _MR_ENCL_LIST list{};
        list.count = c.count;
        std::tie(list.encl[0].slotCount, list.encl[0].type) = c.first;
        std::tie(list.encl[1].slotCount, list.encl[1].type) = c.second;
        std::uint16_t slots = 999;
        check(
            "SLGetSlotNum", {{request(0x01, 0x05, 0, sizeof list, bytesOf(list)), {"SLGetEnclList", "SLGetSlotNum"}}},
            [&] { return SLGetSlotNum(kCont, &slots); },
            [&](bool succeeded) { EXPECT_EQ(succeeded ? c.wanted : 0, slots) << c.count << int{c.first.first}; });
    }
}

/// The LD-to-OS mapping with that count and these entries: target id, partition value, name.
ExpectedRequest osMap(std::uint32_t count, const std::vector<_SL_LD_OS_MAP_ENTRY>& entries) {
    _SL_LD_OS_MAP_T map{};
    map.count = count;
    std::copy(entries.begin(), entries.end(), map.entry);
    return request(0x01, 0x0C, 0, sizeof map, bytesOf(map), Bytes{});
}

TEST_F(WireQueries, OsDriveNameIsThatOfTheLastEntry) {
    const std::pair<ExpectedRequest, const char*> cases[] = {
        {osMap(3, {{5, 0, "/dev/sdx"}, {kLd, 0, "/dev/sda"}, {kLd, 0, "/dev/sdb"}}), "/dev/sdb"},
        {osMap(1, {{kLd, 0, "/dev/sda"}, {kLd, 0, "/dev/sdb"}}), "/dev/sda"},
        {osMap(1, {{kLd, 0, "/dev/mapper/one-of-27-chars"}}), "/dev/mapper/one"},
        {osMap(1, {{0x100U + kLd, 0, "/dev/sda"}}), "NULL"},
        {osMap(~0U, {{kLd, 0, "/dev/sda"}}), "/dev/sda"}};
    for (const auto& [map, wanted] : cases) {
        char name[kOsDriveNameSize];
        check(
            "SLGetOSDriveName", {{map, {"SLGetOSDriveName"}}},
            [&] {
                std::memset(name, 'x', sizeof name);
                return SLGetOSDriveName(kCont, kLd, name);
            },
            [&, w = wanted](bool succeeded) { EXPECT_STREQ(succeeded ? w : "NULL", name); });
    }
}

TEST_F(WireQueries, AllOsDriveNamesInTheOrderOfTheMapping) {
    std::vector<_SL_LD_OS_MAP_ENTRY> full(256, {kLd, 0, "/dev/sdb"});
    std::fill_n(full[255].osDeviceName, sizeof full[255].osDeviceName, 'z'); // no NUL
    const std::pair<ExpectedRequest, std::vector<std::string>> cases[] = {
        {osMap(4, {{kLd, 0, "/dev/sdb"}, {5, 0, "/dev/sdx"}, {0x100U + kLd, 0, "/dev/sdy"}, {kLd, 0, "/dev/sda"}}),
         {"/dev/sdb", "/dev/sda"}},
        {osMap(1, {{5, 0, "/dev/sda"}, {kLd, 0, "/dev/sdb"}}), {}},
        {osMap(~0U, full), std::vector<std::string>(255, "/dev/sdb")}};
    for (const auto& [map, wanted] : cases) {
        OsDriveNames names;
        check(
            "SLGetOSDriveNames", {{map, {"SLGetOSDriveNames"}}},
            [&] {
                std::memset(&names, 'x', sizeof names);
                return SLGetOSDriveNames(kCont, kLd, &names);
            },
            [&, w = wanted](bool succeeded) {
                const bool isFull = succeeded && w.size() == 255;
                ASSERT_EQ(isFull ? 256U : succeeded ? w.size() : 0U, names.count);
                for (unsigned i = 0; i < names.count && i < w.size(); ++i)
                    EXPECT_EQ(w[i], names.name[i]);
                if (isFull)
                    EXPECT_EQ(std::string(28, 'z'), std::string(names.name[255], 28));
            });
    }
}

/// What is kept of the answer to a partition request.
Bytes headOf(const Bytes& answer) {
    return {answer.begin(), answer.begin() + sizeof(_SL_PARTITION_INFO_T)};
}

TEST_F(WireQueries, PartitionIsAskedInTwoStepsAndAlwaysTraced) {
    constexpr std::size_t kFirst = offsetof(_SL_PARTITION_INFO_T, osInstalled);
    constexpr std::size_t kLast = kFirst + sizeof(_SL_PARTITION_INFO_T::osInstalled) - 1;
    for (const std::size_t nonZero : {kFirst - 1, kFirst, kLast, kLast + 1}) {
        _SL_PARTITION_INFO_T partition{};
        const Bytes old = randomBytes(1, sizeof partition);
        Bytes answer(kPartitionReplySize, 0);
        answer[nonZero] = 1;
        ExpectedRequest second = request(0x00, 0x08, 0, kPartitionReplySize, answer, Bytes{});
        second.param = {0x34, kLd};
        const std::vector<Step> steps = {
            {osMap(3, {{0x100U + kLd, 0x77, ""}, {kLd, 0x1234, ""}, {kLd, 0x56, ""}}), {"SLGetLDPartition"}},
            {second, {"SLGetLDPartition"}, {}, true}};
        check(
            "SLGetLDPartition", steps,
            [&] {
                std::memcpy(&partition, old.data(), old.size());
                return SLGetLDPartition(kCont, kLd, &partition);
            },
            [&](bool succeeded) { EXPECT_EQ(succeeded ? headOf(answer) : old, bytesOf(partition)); });
        script.expect(steps[0].request);
        script.expect(second);
        EXPECT_EQ(nonZero == kFirst || nonZero == kLast, IsOSInstallLD(kCont, kLd, nullptr)) << nonZero;
        log.take();
        pass({osMap(1, {{kLd + 1, 0, ""}})}, [&] { return IsOSInstallLD(kCont, kLd, nullptr); });
        script.expect(failing(osMap(0, {}), 0x04));
        EXPECT_EQ(0, IsOSInstallLD(kCont, kLd, nullptr));
        EXPECT_TRUE(log.take().ends_with("\n!ERR func=IsOSInstallLD: SLGetLDPartition error, contNo=1, ldNo=43\n"));
    }
}

TEST_F(WireQueries, QuestionsWithoutALookUpTakeOneRequest) {
    _MR_PD_INFO pd{};
    const Bytes pdAnswer = randomBytes(8, sizeof pd);
    check(
        "SLGetPDInfoByDevice", {{request(0x02, 0x00, kDevice, sizeof pd, pdAnswer), {"SLGetPDInfoByDevice"}}},
        [&] {
            std::memset(&pd, kOld, sizeof pd);
            return SLGetPDInfoByDevice(kCont, kDevice, &pd);
        },
        [&](bool succeeded) { EXPECT_EQ(succeeded ? pdAnswer : Bytes(sizeof pd), bytesOf(pd)); });

    _SL_LD_OS_MAP_T map{};
    const ExpectedRequest mapping = osMap(1, {{kLd, 0x1234, "/dev/sda"}});
    check("SLGetLDOSMap", {{mapping, {"SLGetLDOSMap"}}}, [&] { return SLGetLDOSMap(kCont, &(map = {})); });

    _SL_PARTITION_INFO_T partition{};
    const Bytes answer = randomBytes(9, kPartitionReplySize);
    ExpectedRequest wanted = request(0x00, 0x08, 0, kPartitionReplySize, answer, Bytes{});
    wanted.param = {0x34, kLd};
    check(
        "SLGetMappedPartition", {{wanted, {"SLGetMappedPartition"}, {}, true}},
        [&] { return SLGetMappedPartition(kCont, kLd, 0x1234, &(partition = {})); },
        [&](bool succeeded) { EXPECT_EQ(succeeded ? headOf(answer) : Bytes(sizeof partition), bytesOf(partition)); });
}

TEST_F(WireQueries, SoftwareRaidIsToldByTheNameOfTheFirstController) {
    const std::pair<const char*, int> cases[] = {
        {"LSI Embedded MegaRAID", 1}, {"", 1}, {"LSI", 1}, {"LSI Embedded MegaRAID X", 0}, {"lsi", 0}};
    for (const auto& [name, wanted] : cases) {
        Bytes info(sizeof(_MR_CTRL_INFO));
        std::copy_n(name, std::strlen(name), info.begin() + offsetof(_MR_CTRL_INFO, productName));
        script.expect({.type = 0x01, .cmd = 0x00, .size = sizeof(_MR_CTRL_INFO), .answer = info});
        EXPECT_EQ(wanted, IsSoftwareRAID()) << name;
    }
    script.expect({.type = 0x01, .cmd = 0x00, .size = sizeof(_MR_CTRL_INFO), .status = 0x04});
    EXPECT_EQ(0, IsSoftwareRAID());
    EXPECT_TRUE(log.take().ends_with("\n!ERR func=IsSoftwareRAID: SLGetCtrlInfo error, contNo=0\n"));
}

} // namespace
} // namespace zebtest
