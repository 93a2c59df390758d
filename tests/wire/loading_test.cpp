// The merged controller list, the routing of requests, and the calls that go straight to a library.
#include <algorithm>

#include "storelib/common/StoreLib/controller.h"
#include "storelib/common/StoreLib/request_path.h"
#include "storelib/status_text.h"
#include "tests/support/wire.h"

/// Read by the sanitizers' allocator, where there is one: a block that is too large is no fault of the program.
extern "C" __attribute__((visibility("default"))) const char* __asan_default_options() {
    return "allocator_may_return_null=1";
}

namespace zebtest {
namespace {

struct WireLoading : WireTest {
    ~WireLoading() override {
        gCtrlListMR = gCtrlListIR = gCtrlListIR2 = {};
        libIRPresent = libIR2Present = false;
    }
};

_SL_CTRL_LIST_T listOf(std::uint16_t count, std::uint8_t flags, const std::vector<std::uint32_t>& entries) {
    _SL_CTRL_LIST_T list{count, flags, 0, {}};
    std::copy(entries.begin(), entries.end(), list.ctrl);
    return list;
}

TEST_F(WireLoading, ListsAreMergedAndSortedByTheLow24Bits) {
    const std::vector<std::uint32_t> down = {16, 15, 14, 13, 12, 11, 10, 9, 8, 7, 6, 5, 4, 3, 2, 1};
    const std::vector<std::uint32_t> up(down.rbegin(), down.rend());
    const struct {
        const char* name;
        _SL_CTRL_LIST_T mr, ir, ir2, wanted;
    } cases[] = {
        {"equal ids keep their order, the kind byte is no part of the key",
         listOf(2, 0, {0x02000007, 0x00000007}),
         {},
         listOf(2, 0, {0x01000007, 0x03000001}),
         listOf(4, 0, {0x03000001, 0x02000007, 0x00000007, 0x01000007})},
        {"nothing behind a count is copied",
         listOf(1, 0x81, {9, 8}),
         {},
         listOf(1, 0x42, {4, 3}),
         listOf(2, 0xC3, {4, 9})},
        {"the IR list is counted but not copied", listOf(1, 0, {9}), listOf(1, 4, {3}), {}, listOf(2, 4, {0, 9})},
        {"a count beyond the room", listOf(65535, 0, down), {}, {}, listOf(65535, 0, up)},
        {"two counts beyond the room", listOf(65535, 0, down), {}, listOf(65535, 0, down), listOf(65534, 0, up)},
        {"nothing", {}, {}, {}, {}},
    };
    for (const auto& c : cases) {
        gCtrlListMR = c.mr;
        gCtrlListIR = c.ir;
        gCtrlListIR2 = c.ir2;
        mergeControllerLists();
        _SL_CTRL_LIST_T got{};
        EXPECT_EQ(0U, SLGetCtrlList(&got));
        EXPECT_EQ(bytesOf(c.wanted), bytesOf(got)) << c.name;
    }
}

TEST_F(WireLoading, RequestsGoToTheLibraryOfTheirKind) {
    pfnProcessLibCommandMR = [](_SL_LIB_CMD_PARAM_T*) { return 0xFFFFFFFFU; };
    pfnProcessLibCommandIR = [](_SL_LIB_CMD_PARAM_T* request) { return request->cmdType == 1 ? request->ctrlId : 1U; };
    pfnProcessLibCommandIR2 = [](_SL_LIB_CMD_PARAM_T*) { return 2U; };
    ctrlList = listOf(4, 0, {0x00000001, 0x01000002, 0x02000003, 0x03000004});
    const struct {
        bool mr, others;
        unsigned contNo;
        std::uint32_t wanted;
    } cases[] = {{true, false, 0, ~0U},    {true, false, 1, 0x8019}, {true, false, 2, 0x8019}, {true, true, 1, 1},
                 {true, true, 2, 2},       {true, true, 3, 0x8019},  {false, true, 0, 0x8019}, {true, true, 15, ~0U},
                 {true, true, 16, 0x8019}, {true, true, 255, 0x8019}};
    _SL_LIB_CMD_PARAM_T header{};
    for (const auto& c : cases) {
        libMRPresent = c.mr;
        libIRPresent = libIR2Present = c.others;
        EXPECT_EQ(c.wanted, ProcessLibCommandCall(&header, static_cast<unsigned char>(c.contNo))) << c.contNo << c.mr;
    }
    EXPECT_EQ("", log.take()) << "a request that no library takes leaves no trace here";
    _MR_CTRL_PROP properties{};
    EXPECT_EQ(0x01000002U, SLGetCtrlProp(1, &properties)) << "the controller id is the whole entry";
}

TEST_F(WireLoading, StatusIsCutTo32Bits) {
    const auto wide = +[](_SL_LIB_CMD_PARAM_T*) -> std::uint64_t { return 0x0000'0001'0000'0004; };
    pfnProcessLibCommandMR = reinterpret_cast<ProcessLibCommandFn>(reinterpret_cast<void*>(wide));
    _SL_LIB_CMD_PARAM_T header{};
    EXPECT_EQ(4U, ProcessLibCommandCall(&header, 0));
}

unsigned timesOutOfMemory = 0;

TEST_F(WireLoading, BlockThatCannotBeHadIsTold) {
    const auto saved = std::exchange(pfnMemAllocFailed, [] { ++timesOutOfMemory; });
    const volatile std::size_t tooMuch = SIZE_MAX / 2;
    EXPECT_EQ(nullptr, allocateRecord<_MR_PD_LIST>(tooMuch));
    EXPECT_EQ(1U, timesOutOfMemory);
    EXPECT_NE(nullptr, allocateRecord<_MR_PD_LIST>());
    EXPECT_EQ(1U, timesOutOfMemory);
    pfnMemAllocFailed = nullptr;
    EXPECT_EQ(nullptr, allocateRecord<_MR_PD_LIST>(tooMuch));
    pfnMemAllocFailed = saved;
}

TEST_F(WireLoading, LibraryItselfIsCalledDirectly) {
    _SL_CTRL_LIST_T list = listOf(9, 9, {9});
    const _SL_CTRL_LIST_T answer = listOf(3, 7, {1, 2, 3});
    check(
        "InitializeLibrary", {{direct(0x00, sizeof answer, bytesOf(answer)), {"InitializeLibrary"}}},
        [&] { return InitializeLibrary(&list, pfnProcessLibCommandMR); },
        [&](bool succeeded) { EXPECT_EQ(bytesOf(succeeded ? answer : _SL_CTRL_LIST_T{}), bytesOf(list)); });
    _SL_LIB_VER_T version{};
    check(
        "SLGetLibraryVersion", {{direct(0x04, sizeof version, {'1', '2'}), {"SLGetLibraryVersion"}}},
        [&] { return SLGetLibraryVersion(&(version = {})); },
        [&](bool succeeded) { EXPECT_EQ(succeeded ? '2' : '\0', version.revision[1]); });

    unloadDLL(1);
    EXPECT_TRUE(libMRPresent);
    script.expect(failing(direct(0x09), 0x04));
    EXPECT_EQ(0U, SLExitLib());
    EXPECT_FALSE(libMRPresent);
    EXPECT_EQ(0U, SLExitLib()) << "a second time";
    EXPECT_TRUE(sameText(log.take(), requestTrace("UnInitializeLibrary", direct(0x09), 0x04) +
                                         "!ERR ExitLib failed for MegaRAID SAS Controller!! rval 0x4\n"));
}

TEST_F(WireLoading, StatusTexts) {
    const std::pair<std::uint32_t, const char*> cases[] = {{0x8003, "Storelib error"},
                                                           {0x2F, "matches SCSI RESERVATION_CONFLICT"},
                                                           {0x18, " LD initialization in progress"},
                                                           {0x10018, "Storelib error"},
                                                           {0x24, "LD drives are not within an enclosure"},
                                                           {~0U, "Storelib error"}};
    for (const auto& [status, text] : cases)
        EXPECT_STREQ(text, SLStrError(status)) << std::hex << status;
}

} // namespace
} // namespace zebtest
