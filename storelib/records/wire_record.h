// What every wire record has in common: little-endian, packed, of a fixed size.
//
// The records cross the border to a library that was compiled elsewhere, so each one is followed by an assertion on its
// size and on the offset of every field that the program reads or sets.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#define ZEB_WIRE_RECORD(type, bytes)                                     \
    static_assert(sizeof(type) == (bytes), #type " has the wrong size"); \
    static_assert(std::is_standard_layout_v<type> && std::is_trivially_copyable_v<type>, #type " is no plain record")

#define ZEB_WIRE_FIELD(type, field, offset) \
    static_assert(offsetof(type, field) == (offset), #type "::" #field " is misplaced")
