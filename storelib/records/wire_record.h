// What every wire record has in common: little-endian, packed, of a fixed size.
//
// The records cross the border to a library that was compiled elsewhere, so each one is followed by its layout: its
// size, and the offset of every field that the program reads or sets, all of them asserted. A word says where the
// layout comes from; it holds for the whole record, and a field that comes from elsewhere has a word of its own. The
// layouts can be read by a program as well, see storelib/records/all.h.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <type_traits>

/// The records stand apart from the global names so that the library's own header can be included beside them. Only
/// where that is done must a name be qualified.
namespace wire {}
using namespace wire;

namespace wire {

/// Where a layout comes from.
enum class Origin : std::uint8_t {
    given, ///< stated for this program; nothing may change it
    published, ///< the controllers' published firmware interface, as open drivers declare it
    chosen, ///< settled by neither of the two; the first suspect when an answer looks wrong
};

struct FieldLayout {
    const char* name;
    std::size_t offset; ///< bytes
    std::size_t size; ///< bytes
    Origin origin;
};

struct RecordLayout {
    const char* name;
    std::size_t size; ///< bytes
    Origin origin; ///< of the record as a whole; a field's own word goes before it
    std::span<const FieldLayout> fields; ///< ascending by offset
};

/// The layout of a record, as Layout<_MR_PD_INFO>::kRecord.
template <class Record>
struct Layout;

constexpr Origin lastOf(Origin record) {
    return record;
}
constexpr Origin lastOf(Origin /*record*/, Origin field) {
    return field;
}

} // namespace wire

/// The layout of a record: ZEB_WIRE_RECORD(type, bytes, origin, ZEB_FIELD(...), ...);
#ifndef ZEB_WIRE_RECORD // cppcheck cannot read it and is told to take nothing for it
#define ZEB_WIRE_RECORD(type, bytes, from, ...)                                                                        \
    static_assert(sizeof(type) == (bytes), #type " has the wrong size");                                               \
    static_assert(std::is_standard_layout_v<type> && std::is_trivially_copyable_v<type>, #type " is no plain record"); \
    template <>                                                                                                        \
    struct Layout<type> {                                                                                              \
        using Record = type;                                                                                           \
        static constexpr Origin kOrigin = Origin::from;                                                                \
        static constexpr FieldLayout kFields[] = {__VA_ARGS__};                                                        \
        static constexpr RecordLayout kRecord{#type, bytes, kOrigin, kFields};                                         \
    }
#endif

/// One field of a record: ZEB_FIELD(field, offset) or ZEB_FIELD(field, offset, origin).
#define ZEB_FIELD(field, at, ...)                                                                                  \
    [] {                                                                                                           \
        static_assert(offsetof(Record, field) == (at), #field " is misplaced");                                    \
        return FieldLayout{#field, at, sizeof(Record::field), lastOf(kOrigin __VA_OPT__(, Origin::) __VA_ARGS__)}; \
    }()
