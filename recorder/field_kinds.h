// Which bytes of a record a field covers, records inside records included, and which of them identify something.
#pragma once

#include "storelib/records/wire_record.h"

#include <cstddef>
#include <cstdint>
#include <vector>

namespace zebrec {

enum class FieldKind : std::uint8_t {
    kPlain,
    kAddress, ///< a number of 8 bytes, or several: SAS addresses, enclosure ids
    kSerialNumber, ///< a number of 2 bytes
    kText, ///< a name or a serial number
};

struct FieldPiece {
    std::size_t offset; ///< bytes, in the outermost record
    std::size_t size;
    FieldKind kind;
};

/// The record that a field holds, or of which it holds a table; null for a field of numbers or text.
const wire::RecordLayout* recordIn(const wire::RecordLayout& layout, const wire::FieldLayout& field);

/// The covered pieces of a record, ascending, without overlap.
const std::vector<FieldPiece>& piecesOf(const wire::RecordLayout& layout);

} // namespace zebrec
