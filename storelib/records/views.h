// The tables of the wire records, each cut to the room that it has.
//
// The counts come from a closed library. A count above its table's room is cut to the room here, and nowhere else is a
// count read to walk a table.
#pragma once

#include "storelib/records/configuration.h"
#include "storelib/records/controller.h"
#include "storelib/records/enclosure.h"
#include "storelib/records/logical_drive.h"
#include "storelib/records/physical_drive.h"
#include "storelib/records/request.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstring>
#include <span>

namespace wire {

/// The first entries of a table of numbers, copied, as the numbers of a packed record may lie unaligned.
template <class Number, std::size_t Room>
class Numbers {
  public:
    Numbers(const Number (*table)[Room], std::size_t count) : size_(std::min(count, Room)) {
        std::memcpy(numbers_.data(), table, sizeof *table);
    }
    const Number* begin() const { return numbers_.data(); }
    const Number* end() const { return begin() + size_; }
    std::size_t size() const { return size_; }
    bool empty() const { return size_ == 0; }

  private:
    std::array<Number, Room> numbers_{};
    std::size_t size_;
};

/// The first entries of a table of records or bytes, in place.
template <class Entry, std::size_t Room>
std::span<Entry> firstOf(Entry (&table)[Room], std::size_t count) {
    static_assert(alignof(Entry) == 1, "the entries may lie unaligned; copy them as Numbers");
    return std::span(table).first(std::min(count, Room));
}

inline Numbers<std::uint32_t, kMaxListedControllers> controllersOf(const _SL_CTRL_LIST_T& list) {
    return {&list.ctrl, list.count};
}

inline std::span<const _MR_IMAGE_COMPONENT> imagesOf(const _MR_CTRL_INFO& info) {
    return firstOf(info.imageComponent, info.imageComponentCount);
}

/// The images that are flashed and run after the next start.
inline std::span<const _MR_IMAGE_COMPONENT> pendingImagesOf(const _MR_CTRL_INFO& info) {
    return firstOf(info.pendingImageComponent, info.pendingImageComponentCount);
}

/// The SAS addresses of the ports to devices, those of unused ones included.
inline Numbers<std::uint64_t, 8> devicePortAddressesOf(const _MR_CTRL_INFO& info) {
    return {&info.devicePortAddr, std::size(info.devicePortAddr)};
}

inline std::span<const _SL_LD_OS_MAP_ENTRY> entriesOf(const _SL_LD_OS_MAP_T& map) {
    return firstOf(map.entry, map.count);
}

inline std::span<const _MR_PD_ADDRESS> entriesOf(const _MR_PD_LIST& list) {
    return firstOf(list.addr, list.count);
}
inline std::span<_MR_PD_ADDRESS> entriesOf(_MR_PD_LIST& list) {
    return firstOf(list.addr, list.count);
}

inline std::span<const _MR_LD_LIST_ENTRY> entriesOf(const _MR_LD_LIST& list) {
    return firstOf(list.ld, list.count);
}
inline std::span<_MR_LD_LIST_ENTRY> entriesOf(_MR_LD_LIST& list) {
    return firstOf(list.ld, list.count);
}

inline std::span<const _MR_ENCL_ENTRY> entriesOf(const _MR_ENCL_LIST& list) {
    return firstOf(list.encl, list.count);
}

inline std::span<const _MR_SAS_CONNECTOR> entriesOf(const _MR_SAS_CONNECTORS& list) {
    return firstOf(list.connector, list.count);
}

/// The drive's SAS addresses, one for each path.
inline Numbers<std::uint64_t, kMaxPaths> sasAddressesOf(const _MR_PD_INFO& pd) {
    return {&pd.sasAddr, pd.pathCount};
}

/// The device ids of the LD's drives, unused places included.
inline Numbers<std::uint16_t, kMaxSlots> deviceIdsOf(const _SL_PD_IN_LD_T& drives) {
    return {&drives.deviceId, drives.count};
}

inline std::span<const _MR_SPAN> spansOf(const _MR_LD_CONFIG& ld) {
    return firstOf(ld.span, ld.spanDepth);
}

/// The drives of an array, empty places included.
inline std::span<const _MR_ARRAY_PD> drivesOf(const _MR_ARRAY& array) {
    return firstOf(array.pd, array.numDrives);
}
inline std::span<_MR_ARRAY_PD> drivesOf(_MR_ARRAY& array) {
    return firstOf(array.pd, array.numDrives);
}
inline std::span<const _MR_ARRAY_PD> drivesOf(const _SL_ARRAY_INFO_T& array) {
    return firstOf(array.pd, array.pdCount);
}

/// The target ids of the LDs on an array.
inline std::span<const std::uint8_t> ldsOf(const _SL_ARRAY_INFO_T& array) {
    return firstOf(array.ldTargetId, array.ldCount);
}

inline std::span<const _MR_FREE_SEGMENT> freeSegmentsOf(const _SL_ARRAY_INFO_T& array) {
    return firstOf(array.freeSegment, array.freeCount);
}

/// The references of the arrays that a spare serves.
inline Numbers<std::uint16_t, kMaxSpareArrays> arrayRefsOf(const _MR_SPARE& spare) {
    return {&spare.arrayRef, spare.arrayCount};
}

/// The elements of one type. They are grouped by type in the order of the counts; those that would lie behind the table
/// are absent.
inline std::span<const _SL_ENCL_ELEMENT> elementsOf(const _SL_ENCL_STATUS_EX_T& status, EnclElementType type) {
    std::size_t before = 0;
    for (unsigned other = 0; other < type; ++other)
        before += status.count[other];
    const std::span all(status.element);
    return before < all.size()
               ? all.subspan(before).first(std::min<std::size_t>(status.count[type], all.size() - before))
               : std::span<const _SL_ENCL_ELEMENT>{};
}

/// The records of one section of a configuration, as many as begin and end inside its block.
template <class Record>
std::span<Record> sectionOf(_MR_CONFIG_DATA* config, std::size_t blockSize, std::size_t offset, std::size_t count) {
    if (blockSize < offset)
        return {};
    auto* first = reinterpret_cast<Record*>(reinterpret_cast<unsigned char*>(config) + offset);
    return {first, std::min(count, (blockSize - offset) / sizeof(Record))};
}

/// The arrays, the LDs and the spares of a configuration that lies in a block of that many bytes: what of them the
/// block has room for. There are none when the block is smaller than the configuration's head.
inline std::span<_MR_ARRAY> arraysOf(_MR_CONFIG_DATA* config, std::size_t blockSize) {
    if (config == nullptr || blockSize < sizeof *config)
        return {};
    return sectionOf<_MR_ARRAY>(config, blockSize, sizeof *config, config->arrayCount);
}

inline std::span<_MR_LD_CONFIG> ldsOf(_MR_CONFIG_DATA* config, std::size_t blockSize) {
    if (config == nullptr || blockSize < sizeof *config)
        return {};
    const std::size_t offset = sizeof *config + config->arrayCount * sizeof(_MR_ARRAY);
    return sectionOf<_MR_LD_CONFIG>(config, blockSize, offset, config->ldCount);
}

inline std::span<_MR_SPARE> sparesOf(_MR_CONFIG_DATA* config, std::size_t blockSize) {
    if (config == nullptr || blockSize < sizeof *config)
        return {};
    const std::size_t offset =
        sizeof *config + config->arrayCount * sizeof(_MR_ARRAY) + config->ldCount * sizeof(_MR_LD_CONFIG);
    return sectionOf<_MR_SPARE>(config, blockSize, offset, config->spareCount);
}

} // namespace wire
