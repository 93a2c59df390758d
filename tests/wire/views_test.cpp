// The tables of the records hold what their counts say, and never more than they have room for.
#include <functional>

#include <gtest/gtest.h>

#include "storelib/records/views.h"

namespace zebtest {
namespace {

/// A view as a function from the count in the record to the number of entries.
struct View {
    const char* name;
    std::size_t room;
    std::function<std::size_t(std::uint32_t)> entries;
};

template <class Record, class Count, class Look>
View of(const char* name, std::size_t room, Count Record::*count, Look look) {
    return {name, room,
            [=](std::uint32_t told) {
                alignas(8) Record record{};
                record.*count = static_cast<Count>(told);
                return look(record).size();
            }};
}

constexpr auto kEntriesOf = [](const auto& record) { return entriesOf(record); };
constexpr auto kDrivesOf = [](const auto& record) { return drivesOf(record); };

/// A configuration with room for this many of each of its three sections, one of which is told to hold `told`.
template <class Look>
View ofConfig(const char* name, std::uint16_t _MR_CONFIG_DATA::*count, std::size_t entrySize, Look look) {
    return {name, 3,
            [=](std::uint32_t told) {
                alignas(8) struct {
                    _MR_CONFIG_DATA head;
                    unsigned char rest[3 * sizeof(_MR_ARRAY)];
                } block{};
                block.head.*count = static_cast<std::uint16_t>(told);
                return look(&block.head, sizeof block.head + 4 * entrySize - 1).size();
            }};
}

TEST(Views, CutEveryCountToTheRoomOfItsTable) {
    const View views[] = {
        of("controllers", 16, &_SL_CTRL_LIST_T::count, [](const auto& list) { return controllersOf(list); }),
        of("firmware images", 8, &_MR_CTRL_INFO::imageComponentCount, [](const auto& info) { return imagesOf(info); }),
        of("OS mapping", 256, &_SL_LD_OS_MAP_T::count, kEntriesOf),
        of("PD list", 256, &_MR_PD_LIST::count, kEntriesOf),
        of("PD list to sort", 256, &_MR_PD_LIST::count, [](auto& list) { return entriesOf(list); }),
        of("LD list", 64, &_MR_LD_LIST::count, kEntriesOf),
        of("LD list to sort", 64, &_MR_LD_LIST::count, [](auto& list) { return entriesOf(list); }),
        of("enclosure list", 32, &_MR_ENCL_LIST::count, kEntriesOf),
        of("SAS connectors", 8, &_MR_SAS_CONNECTORS::count, kEntriesOf),
        of("SAS addresses", 4, &_MR_PD_INFO::pathCount, [](const auto& pd) { return sasAddressesOf(pd); }),
        of("drives of an LD", 256, &_SL_PD_IN_LD_T::count, [](const auto& drives) { return deviceIdsOf(drives); }),
        of("spans", 8, &_MR_LD_CONFIG::spanDepth, [](const auto& ld) { return spansOf(ld); }),
        of("drives of an array", 32, &_MR_ARRAY::numDrives, kDrivesOf),
        of("drives of a RAID group record", 32, &_SL_ARRAY_INFO_T::pdCount, kDrivesOf),
        of("LDs of a RAID group record", 64, &_SL_ARRAY_INFO_T::ldCount, [](const auto& rg) { return ldsOf(rg); }),
        of("free segments", 127, &_SL_ARRAY_INFO_T::freeCount, [](const auto& rg) { return freeSegmentsOf(rg); }),
        of("arrays of a spare", 16, &_MR_SPARE::arrayCount, [](const auto& spare) { return arrayRefsOf(spare); }),
        ofConfig("arrays", &_MR_CONFIG_DATA::arrayCount, sizeof(_MR_ARRAY),
                 [](auto* config, std::size_t size) { return arraysOf(config, size); }),
        ofConfig("LDs", &_MR_CONFIG_DATA::ldCount, sizeof(_MR_LD_CONFIG),
                 [](auto* config, std::size_t size) { return ldsOf(config, size); }),
        ofConfig("spares", &_MR_CONFIG_DATA::spareCount, sizeof(_MR_SPARE),
                 [](auto* config, std::size_t size) { return sparesOf(config, size); }),
    };
    for (const View& view : views) {
        EXPECT_EQ(0U, view.entries(0)) << view.name;
        EXPECT_EQ(view.room, view.entries(static_cast<std::uint32_t>(view.room))) << view.name;
        EXPECT_EQ(view.room, view.entries(static_cast<std::uint32_t>(view.room + 1))) << view.name << ", one too many";
        EXPECT_EQ(view.room, view.entries(~0U)) << view.name << ", all ones";
    }
}

TEST(Views, ElementsOfATypeStandBehindThoseOfTheTypesBefore) {
    const struct {
        std::uint16_t slots, supplies, fans;
        std::size_t first, wanted; // of the fans
    } cases[] = {{24, 2, 5, 26, 5},   {0, 0, 254, 0, 254}, {0, 0, 255, 0, 254},        {24, 2, 0xFFFF, 26, 228},
                 {253, 0, 2, 253, 1}, {253, 1, 1, 254, 0}, {0xFFFF, 0xFFFF, 1, 254, 0}};
    for (const auto& c : cases) {
        _SL_ENCL_STATUS_EX_T status{};
        status.count[kElemSlot] = c.slots;
        status.count[kElemPowerSupply] = c.supplies;
        status.count[kElemFan] = c.fans;
        const auto fans = elementsOf(status, kElemFan);
        EXPECT_EQ(c.wanted, fans.size()) << c.slots << ' ' << c.supplies << ' ' << c.fans;
        if (!fans.empty())
            EXPECT_EQ(c.first, static_cast<std::size_t>(fans.data() - status.element));
    }
}

TEST(Views, ShortConfigurationHasNothing) {
    _MR_CONFIG_DATA head{};
    head.arrayCount = head.ldCount = head.spareCount = 1;
    EXPECT_TRUE(arraysOf(&head, sizeof head - 1).empty());
    EXPECT_TRUE(ldsOf(&head, sizeof head - 1).empty());
    EXPECT_TRUE(sparesOf(&head, sizeof head + sizeof(_MR_ARRAY)).empty());
    EXPECT_TRUE(arraysOf(nullptr, sizeof head).empty());
}

} // namespace
} // namespace zebtest
