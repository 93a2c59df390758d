#include "recorder/request.h"

#include "storelib/records/views.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zebrec {

namespace {

constexpr std::uint8_t kPassThrough = 0x06;
constexpr std::uint8_t kScsi = 0x00;
constexpr std::uint8_t kControllerCommand = 0x03;
constexpr std::uint8_t kLibrary = 0x00;

template <class Record>
std::optional<Record> headOf(std::span<const std::uint8_t> data) {
    if (data.size() < sizeof(Record))
        return std::nullopt;
    Record record;
    std::memcpy(&record, data.data(), sizeof record);
    return record;
}

std::string reference(Reference kind, const wire::_SL_LIB_CMD_PARAM_T& fields) {
    const auto named = [](const char* name, unsigned value) { return ", " + (name + (" " + std::to_string(value))); };
    const auto& ref = fields.ref;
    switch (kind) {
    case Reference::kDevice:
        return named("device id", ref.pdRef.deviceId);
    case Reference::kDrive:
        return named("device id", ref.pdRef.deviceId) + named("sequence number", ref.pdRef.seqNo);
    case Reference::kTarget:
        return named("target id", ref.ldRef.targetId);
    case Reference::kLd:
        return named("target id", ref.ldRef.targetId) + named("sequence number", ref.ldRef.seqNo);
    case Reference::kArray:
        return named("array", ref.arrayId);
    case Reference::kEnclosure:
        return named("enclosure", ref.enclDeviceId);
    case Reference::kSequence:
        return named("sequence number", ref.ctrlSeqNo);
    case Reference::kNone:
    case Reference::kEveryForeign:
        break;
    }
    return "";
}

std::string controller(const wire::_SL_LIB_CMD_PARAM_T& fields, std::optional<unsigned> contNo) {
    if (contNo)
        return "controller " + std::to_string(*contNo);
    char text[32];
    std::snprintf(text, sizeof text, "controller id 0x%08X", fields.ctrlId);
    return text;
}

} // namespace

Request Request::of(const Header& header, std::span<const std::uint8_t> data) {
    Request request{header, {}, {}};
    if (request.isControllerCommand()) {
        request.dcmd = headOf<wire::_SL_DCMD_INPUT_T>(data);
        if (request.dcmd)
            request.dcmd->data = nullptr;
    }
    if (request.isScsi())
        request.scsi = headOf<wire::_SL_SCSI_PASSTHRU_T>(data);
    return request;
}

wire::_SL_LIB_CMD_PARAM_T Request::fields() const {
    wire::_SL_LIB_CMD_PARAM_T fields{};
    std::memcpy(&fields, header.data(), header.size());
    return fields;
}

bool Request::isControllerCommand() const {
    return header[kTypeAt] == kPassThrough && header[kCommandAt] == kControllerCommand;
}

bool Request::isScsi() const {
    return header[kTypeAt] == kPassThrough && header[kCommandAt] == kScsi;
}

Effect Request::effect() const {
    if (isControllerCommand()) {
        const DcmdRow* row = dcmd ? findDcmd(dcmd->opcode) : nullptr;
        return row != nullptr ? row->effect : Effect::kChanges;
    }
    if (isScsi()) {
        const ScsiRow* row = scsi ? findScsi(scsi->cdb[0]) : nullptr;
        return row != nullptr ? row->effect : Effect::kChanges;
    }
    const RequestRow* row = findRequest(header[kTypeAt], header[kCommandAt]);
    return row != nullptr ? row->effect : Effect::kChanges;
}

Data Request::data() const {
    if (isControllerCommand())
        return {dcmd ? Shape::kControllerCommand : Shape::kUnknown};
    if (isScsi())
        return {scsi ? Shape::kScsi : Shape::kUnknown};
    const RequestRow* row = findRequest(header[kTypeAt], header[kCommandAt]);
    return row != nullptr ? row->data : Data{Shape::kUnknown};
}

Data Request::innerData() const {
    const DcmdRow* row = dcmd ? findDcmd(dcmd->opcode) : nullptr;
    return row != nullptr ? row->data : Data{Shape::kUnknown};
}

bool Request::sends() const {
    return isControllerCommand() || isScsi() || effect() == Effect::kChanges;
}

std::string codeOf(const Request& request) {
    char text[32];
    const unsigned type = request.header[kTypeAt];
    const unsigned cmd = request.header[kCommandAt];
    if (request.dcmd)
        std::snprintf(text, sizeof text, "%02X/%02X %08X", type, cmd, unsigned{request.dcmd->opcode});
    else if (request.scsi)
        std::snprintf(text, sizeof text, "%02X/%02X %02X", type, cmd, unsigned{request.scsi->cdb[0]});
    else
        std::snprintf(text, sizeof text, "%02X/%02X", type, cmd);
    return text;
}

std::string describe(const Request& request, std::optional<unsigned> contNo) {
    const auto fields = request.fields();
    std::string text = codeOf(request) + " ";
    if (const RequestRow* row = findRequest(fields.cmdType, fields.cmd)) {
        text += row->words;
        if (fields.cmdType != kLibrary || fields.ctrlId != 0)
            text += ": " + controller(fields, contNo) + reference(row->reference, fields);
        return text;
    }
    if (const DcmdRow* row = request.dcmd ? findDcmd(request.dcmd->opcode) : nullptr) {
        text += row->words + (": " + controller(fields, contNo));
        if (row->reference == Reference::kTarget)
            text += ", target id " + std::to_string(request.dcmd->mailbox[0]);
        return text;
    }
    if (const ScsiRow* row = request.scsi ? findScsi(request.scsi->cdb[0]) : nullptr)
        return text + row->words + ": " + controller(fields, contNo) + ", device id " +
               std::to_string(request.scsi->deviceId);
    return text + "unknown request: " + controller(fields, contNo);
}

void ControllerNumbers::learn(const wire::_SL_CTRL_LIST_T& list) {
    const auto listed = controllersOf(list);
    ids_.assign(listed.begin(), listed.end());
    constexpr std::uint32_t kIdBits = 0x00FFFFFFU; // the top byte is the library kind
    std::stable_sort(ids_.begin(), ids_.end(),
                     [](std::uint32_t a, std::uint32_t b) { return (a & kIdBits) < (b & kIdBits); });
}

std::optional<unsigned> ControllerNumbers::numberOf(std::uint32_t ctrlId) const {
    const auto found = std::find(ids_.begin(), ids_.end(), ctrlId);
    if (found == ids_.end())
        return std::nullopt;
    return static_cast<unsigned>(found - ids_.begin());
}

} // namespace zebrec
