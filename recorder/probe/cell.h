// A field of an answer, found by the names of the layouts, so that a check reads and names the very same bytes.
#pragma once

#include "recorder/request.h"

#include <string>
#include <string_view>
#include <vector>

namespace zebprobe {

using zebrec::Bytes;

/// One request that was sent, and its answer.
struct Answered {
    const wire::RecordLayout* layout = nullptr; ///< of the answer; null where it holds no record
    const wire::RecordLayout* carrier = nullptr; ///< the input of a controller command that asked for it
    std::string object; ///< whose it is: "physical drive 11 of controller 0"
    Bytes bytes; ///< the whole buffer, a pattern where the library wrote nothing
    std::size_t wrote = 0; ///< bytes up to the last that differs from the pattern
    std::size_t past = 0; ///< bytes written behind the buffer
    std::uint32_t status = 0;
};

class Cell {
  public:
    Cell() = default;
    /// The whole of an answer; nowhere when it is null, an error, or holds no record.
    explicit Cell(const Answered* answer);

    /// False for a cell of an answer that was not given.
    bool there() const { return answer_ != nullptr; }
    /// The field of the record in this cell.
    Cell at(std::string_view field) const;
    /// The i-th record of the table in this cell.
    Cell entry(std::size_t i) const;
    /// The i-th number of the table in this cell.
    Cell number(std::size_t i, std::size_t width) const;
    /// A record at that offset, behind the one that the layout of the answer describes.
    Cell record(const wire::RecordLayout& layout, std::size_t offset, const std::string& name) const;

    /// The same bytes as a field of the record around the one in this cell, which is no part of it then. Nowhere when
    /// there is none around it.
    Cell outer() const;

    std::span<const std::uint8_t> bytes() const;
    std::uint64_t value() const; ///< of up to 8 bytes, little-endian
    bool blank() const; ///< all its bytes are zero

    /// The records that it lies in, from the answer's own inwards.
    const std::vector<const wire::RecordLayout*>& records() const { return records_; }
    /// "config.span[0].arrayRef (given) at 80 in _MR_LD_INFO of logical drive 1 of controller 0: 00 00"
    std::string describe() const;

  private:
    const Answered* answer_ = nullptr;
    std::size_t offset_ = 0;
    std::size_t size_ = 0;
    std::vector<const wire::RecordLayout*> records_;
    bool isRecord_ = false; ///< the cell is one record or a table of them, the last of records_
    wire::Origin origin_ = wire::Origin::given;
    std::string path_;
};

const char* wordOf(wire::Origin origin);

} // namespace zebprobe
