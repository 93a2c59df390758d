// What the tool can ask of the library: of each request whether it reads or changes, how it is called in words, what
// its reference names and which record its data holds. What is not in this table counts as changing.
#pragma once

#include "storelib/records/wire_record.h"

#include <cstdint>
#include <span>

namespace zebrec {

enum class Effect : std::uint8_t { kReads, kChanges };

/// What the four reference bytes of the header name.
enum class Reference : std::uint8_t {
    kNone,
    kDevice,
    kDrive,
    kTarget,
    kLd,
    kArray,
    kEnclosure,
    kSequence,
    kEveryForeign
};

/// What the data holds.
enum class Shape : std::uint8_t {
    kUnknown, ///< nobody here knows which of its bytes identify something
    kNone,
    kRecord, ///< the record of the row's layout, zeros behind it
    kConfiguration, ///< a configuration: head, arrays, LDs, spares
    kNumber, ///< a 32-bit number that identifies nothing
    kSized, ///< begins with its own size; nothing of the rest is known
    kControllerCommand, ///< the input record of a controller command, which points to data of its own
    kScsi, ///< a SCSI pass-through block
};

struct Data {
    Shape shape = Shape::kNone;
    const wire::RecordLayout* layout = nullptr; ///< of kRecord
};

struct RequestRow {
    std::uint8_t type;
    std::uint8_t cmd;
    Effect effect;
    Reference reference;
    Data data; ///< read by a reading request, sent by a changing one
    const char* words;
};

/// A controller command, sent through the pass-through.
struct DcmdRow {
    std::uint32_t opcode;
    Effect effect;
    Reference reference; ///< kTarget: the first mailbox byte is an LD's target id
    Data data;
    const char* words;
};

/// A SCSI command to a drive, by the first byte of its block.
struct ScsiRow {
    std::uint8_t operation;
    Effect effect;
    const char* words;
};

std::span<const RequestRow> requestRows();
std::span<const DcmdRow> dcmdRows();
std::span<const ScsiRow> scsiRows();

/// The row of a request, or null.
const RequestRow* findRequest(std::uint8_t type, std::uint8_t cmd);
const DcmdRow* findDcmd(std::uint32_t opcode);
const ScsiRow* findScsi(std::uint8_t operation);

} // namespace zebrec
