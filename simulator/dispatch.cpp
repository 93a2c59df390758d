#include "simulator/dispatch.h"

#include "simulator/operations.h"
#include "simulator/passthrough.h"
#include "simulator/queries.h"
#include "simulator/scenario_io.h"
#include "storelib/records/cache_backup.h"
#include "storelib/records/enclosure.h"

#include <algorithm>
#include <utility>

namespace zebsim {

namespace {

enum class Data { kNone, kRead, kWrite };

struct Command {
    std::uint8_t type;
    std::uint8_t cmd;
    Data data;
    std::uint32_t size; ///< least data size
    Handler handler;
};

// The simulator's own table: the tool's is elsewhere, so that a wrong code in one of them shows.
constexpr Command kCommands[] = {
    {0x00, 0x08, Data::kRead, kPartitionReplySize, getPartition},
    {0x01, 0x00, Data::kRead, sizeof(_MR_CTRL_INFO), getCtrlInfo},
    {0x01, 0x01, Data::kRead, sizeof(_MR_CTRL_PROP), getCtrlProperties},
    {0x01, 0x02, Data::kWrite, sizeof(_MR_CTRL_PROP), setCtrlProperties},
    {0x01, 0x04, Data::kRead, sizeof(_MR_PD_LIST), getPdList},
    {0x01, 0x05, Data::kRead, sizeof(_MR_ENCL_LIST), getEnclList},
    {0x01, 0x0B, Data::kRead, sizeof(_MR_DRV_PCI_INFORMATION), getPciInfo},
    {0x01, 0x0C, Data::kRead, sizeof(_SL_LD_OS_MAP_T), getOsMapping},
    {0x01, 0x0D, Data::kRead, sizeof(_MR_LD_LIST), getLdList},
    {0x01, 0x0F, Data::kRead, sizeof(_MR_PR_PROPERTIES), getPatrolReadProperties},
    {0x01, 0x10, Data::kWrite, sizeof(_MR_PR_PROPERTIES), setPatrolReadProperties},
    {0x01, 0x11, Data::kNone, 0, startPatrolRead},
    {0x01, 0x12, Data::kNone, 0, stopPatrolRead},
    {0x01, 0x13, Data::kRead, sizeof(_MR_DRV_DRIVER_VERSION), getDriverVersion},
    {0x02, 0x00, Data::kRead, sizeof(_MR_PD_INFO), withDrive<getPdInfo>},
    {0x02, 0x01, Data::kNone, 0, withDrive<fresh<makeDriveOnline>>},
    {0x02, 0x02, Data::kNone, 0, withDrive<fresh<makeDriveOffline>>},
    {0x02, 0x05, Data::kNone, 0, withDrive<fresh<startRebuild>>},
    {0x02, 0x06, Data::kNone, 0, withDrive<fresh<cancelRebuild>>},
    {0x02, 0x07, Data::kRead, sizeof(_MR_PD_PROGRESS), withDrive<getPdProgress>},
    {0x02, 0x08, Data::kNone, 0, withDrive<startLocate>},
    {0x02, 0x09, Data::kNone, 0, withDrive<stopLocate>},
    {0x02, 0x0A, Data::kNone, 0, withDrive<fresh<makeGlobalSpare>>},
    {0x02, 0x0B, Data::kWrite, sizeof(_SL_DEDICATED_SPARE_T), withDrive<fresh<makeDedicatedSpare>>},
    {0x02, 0x0D, Data::kNone, 0, withDrive<fresh<removeSpare>>},
    {0x02, 0x13, Data::kNone, 0, withDrive<fresh<makeDriveUnconfiguredGood>>},
    {0x02, 0x14, Data::kRead, sizeof(_MR_PD_ALLOWED_OPS), withDrive<getPdAllowedOps>},
    {0x03, 0x00, Data::kRead, sizeof(_MR_LD_INFO), withLd<getLdInfo>},
    {0x03, 0x01, Data::kRead, sizeof(_MR_LD_PROPERTIES), withLd<getLdProperties>},
    {0x03, 0x02, Data::kWrite, sizeof(_MR_LD_PROPERTIES), withLd<fresh<setLdProperties>>},
    {0x03, 0x03, Data::kNone, 0, withLd<fresh<deleteLd>>},
    {0x03, 0x06, Data::kNone, 0, withLd<fresh<startCheck>>},
    {0x03, 0x07, Data::kNone, 0, withLd<fresh<cancelCheck>>},
    {0x03, 0x08, Data::kRead, sizeof(_MR_LD_PROGRESS), withLd<getLdProgress>},
    {0x03, 0x09, Data::kNone, 0, withLd<fresh<startInit>>},
    {0x03, 0x0A, Data::kNone, 0, withLd<fresh<cancelInit>>},
    {0x03, 0x0B, Data::kRead, sizeof(_SL_PD_IN_LD_T), withLd<getPdInLd>},
    {0x03, 0x0E, Data::kRead, sizeof(_MR_LD_ALLOWED_OPS), withLd<getLdAllowedOps>},
    {0x04, 0x00, Data::kRead, sizeof(_MR_CONFIG_DATA), readConfig},
    {0x04, 0x03, Data::kRead, sizeof(_MR_FOREIGN_CFG_GUIDS), scanForeign},
    {0x04, 0x05, Data::kRead, sizeof(_MR_CONFIG_DATA), readForeignConfig},
    {0x04, 0x06, Data::kNone, 0, importForeign},
    {0x04, 0x07, Data::kNone, 0, clearForeign},
    {0x04, 0x08, Data::kRead, sizeof(_SL_ARRAY_INFO_T), getArrayInfo},
    {0x05, 0x00, Data::kRead, sizeof(_MR_BBU_STATUS), withBackupUnit<getBackupStatus>},
    {0x05, 0x01, Data::kRead, sizeof(_MR_BBU_CAPACITY_INFO), withBackupUnit<getBackupCapacity>},
    {0x05, 0x02, Data::kRead, sizeof(_MR_BBU_DESIGN_INFO), withBackupUnit<getBackupDesign>},
    {0x05, 0x03, Data::kNone, 0, withBackupUnit<startLearnCycle>},
    {0x05, 0x04, Data::kRead, sizeof(_MR_BBU_PROPERTIES), withBackupUnit<getBackupProperties>},
    {0x08, 0x00, Data::kRead, sizeof(_SL_ENCL_CONFIG_T), getEnclConfig},
    {0x08, 0x05, Data::kRead, sizeof(_SL_ENCL_STATUS_EX_T), getEnclStatus},
};

constexpr std::uint8_t kPassThroughType = 0x06;
constexpr std::uint8_t kScsiCommand = 0x00;
constexpr std::uint8_t kDcmdCommand = 0x03;
constexpr std::uint8_t kLibraryType = 0x00;
constexpr std::uint8_t kVersionCommand = 0x04;

bool is(const _SL_LIB_CMD_PARAM_T& request, std::uint8_t type, std::uint8_t cmd) {
    return request.cmdType == type && request.cmd == cmd;
}

const Command* findCommand(const _SL_LIB_CMD_PARAM_T& request) {
    const auto* found = std::find_if(std::begin(kCommands), std::end(kCommands),
                                     [&](const Command& c) { return is(request, c.type, c.cmd); });
    return found == std::end(kCommands) ? nullptr : found;
}

bool isKnownType(std::uint8_t type) {
    return type == kPassThroughType ||
           std::any_of(std::begin(kCommands), std::end(kCommands), [=](const Command& c) { return c.type == type; });
}

/// Where an answer goes and where outgoing bytes come from, inside the caller's memory.
struct Buffers {
    std::span<std::uint8_t> room;
    std::span<const std::uint8_t> input;
};

std::span<std::uint8_t> dataOf(const _SL_LIB_CMD_PARAM_T& request) {
    return {static_cast<std::uint8_t*>(request.data), request.data == nullptr ? 0U : request.dataSize};
}

template <class Record>
std::optional<Record> headOf(const _SL_LIB_CMD_PARAM_T& request) {
    const auto data = dataOf(request);
    if (data.size() < sizeof(Record))
        return std::nullopt;
    Record record;
    std::memcpy(&record, data.data(), sizeof record);
    return record;
}

std::uint32_t dataStatus(const _SL_LIB_CMD_PARAM_T& request, std::uint32_t size) {
    if (size != 0 && request.data == nullptr)
        return kNullData;
    return request.dataSize < size ? kShortData : kSuccess;
}

/// Checks a SCSI block and finds its parts.
std::uint32_t scsiBuffers(const _SL_LIB_CMD_PARAM_T& request, Buffers& buffers) {
    const std::uint32_t status = dataStatus(request, sizeof(_SL_SCSI_PASSTHRU_T));
    if (status != kSuccess)
        return status;
    const auto data = dataOf(request);
    const auto header = headOf<_SL_SCSI_PASSTHRU_T>(request);
    if (header->dataLength > data.size() - sizeof *header)
        return kShortData;
    buffers.input = data.first(sizeof *header);
    buffers.room = data.subspan(sizeof *header, header->dataLength);
    return kSuccess;
}

/// Checks a DCMD input and finds its payload.
std::uint32_t dcmdBuffers(const _SL_LIB_CMD_PARAM_T& request, Buffers& buffers) {
    const std::uint32_t status = dataStatus(request, sizeof(_SL_DCMD_INPUT_T));
    if (status != kSuccess)
        return status;
    const auto dcmd = headOf<_SL_DCMD_INPUT_T>(request);
    if (dcmd->dataSize != 0 && dcmd->data == nullptr)
        return kNullData;
    const std::span<std::uint8_t> payload{static_cast<std::uint8_t*>(dcmd->data), dcmd->dataSize};
    if ((dcmd->direction & kDcmdFromController) != 0)
        buffers.room = payload;
    if ((dcmd->direction & kDcmdToController) != 0)
        buffers.input = payload;
    return kSuccess;
}

/// The checks that need no model; fills in the buffers.
std::uint32_t checkRequest(const _SL_LIB_CMD_PARAM_T& request, const Command* command, Buffers& buffers) {
    if (is(request, kPassThroughType, kScsiCommand))
        return scsiBuffers(request, buffers);
    if (is(request, kPassThroughType, kDcmdCommand))
        return dcmdBuffers(request, buffers);
    if (command == nullptr)
        return isKnownType(request.cmdType) ? kInvalidCommand : kInvalidType;
    if (command->data == Data::kRead)
        buffers.room = dataOf(request);
    if (command->data == Data::kWrite)
        buffers.input = dataOf(request);
    return dataStatus(request, command->size);
}

std::uint32_t runHandler(Call& call, const Command* command) {
    if (command != nullptr)
        return command->handler(call);
    if (is(call.request, kPassThroughType, kScsiCommand))
        return scsiPassThrough(call);
    return dcmdPassThrough(call, *headOf<_SL_DCMD_INPUT_T>(call.request));
}

/// Copies the answer into the caller's room, as far as the room and the fault let it.
void deliver(Bytes answer, std::span<std::uint8_t> room, Stage& stage, const Strike& strike) {
    stage.answer = &answer;
    strike.due(Phase::kAnswer, stage);
    stage.answer = nullptr;
    std::copy_n(answer.begin(), std::min(answer.size(), room.size()), room.begin());
    stage.room = room;
    strike.due(Phase::kRoom, stage);
}

/// Runs the handler on the model. Without a saved state nothing has happened: the model goes back and the status says
/// so.
std::uint32_t runSaved(Session& session, Call& call, const Command* command, Stage& stage, const Strike& strike) {
    std::optional<Model> before;
    if (session.keepsState() && (command == nullptr || command->data != Data::kRead))
        before = session.model();
    if (!strike.due(Phase::kHandler, stage))
        stage.status = runHandler(call, command);
    strike.due(Phase::kModel, stage);
    const bool changed = std::exchange(stage.changed, false) || call.changed;
    if (!changed || session.save())
        return stage.status;
    if (before)
        session.model() = *before;
    return kOsFailure;
}

std::uint32_t answerVersion(Stage& stage, const Strike& strike) {
    const std::uint32_t status = dataStatus(stage.request, sizeof(_SL_LIB_VER_T));
    if (status != kSuccess)
        return status;
    const std::string text = "1.0 4.02-00";
    Bytes answer(text.begin(), text.end());
    answer[3] = '\0';
    answer.resize(sizeof(_SL_LIB_VER_T));
    deliver(std::move(answer), dataOf(stage.request), stage, strike);
    return kSuccess;
}

} // namespace

std::uint32_t dispatch(Session& session, Stage& stage, const Strike& strike) {
    const _SL_LIB_CMD_PARAM_T& request = stage.request;
    if (is(request, kLibraryType, kVersionCommand))
        return answerVersion(stage, strike);
    Buffers buffers;
    const Command* command = findCommand(request);
    std::uint32_t status = checkRequest(request, command, buffers);
    if (status != kSuccess)
        return status;
    Controller* ctrl = findController(session.model(), request.ctrlId);
    if (ctrl == nullptr)
        return kBadController;
    Call call{session.model(), *ctrl, request, buffers.input, {}};
    status = runSaved(session, call, command, stage, strike);
    if (status == kSuccess)
        deliver(std::move(call.answer), buffers.room, stage, strike);
    return status;
}

std::uint32_t answerControllerList(Stage& stage, const Strike& strike) {
    const std::uint32_t status = dataStatus(stage.request, sizeof(_SL_CTRL_LIST_T));
    if (status != kSuccess)
        return status;
    _SL_CTRL_LIST_T list{};
    for (const Controller& ctrl : stage.model.controllers)
        list.ctrl[list.count++] = ctrl.id;
    Bytes answer(sizeof list);
    std::memcpy(answer.data(), &list, sizeof list);
    deliver(std::move(answer), dataOf(stage.request), stage, strike);
    return kSuccess;
}

std::optional<std::uint32_t> opcodeOf(const _SL_LIB_CMD_PARAM_T& request) {
    const auto dcmd = headOf<_SL_DCMD_INPUT_T>(request);
    if (!is(request, kPassThroughType, kDcmdCommand) || !dcmd)
        return std::nullopt;
    return dcmd->opcode;
}

std::string outgoingBytes(const _SL_LIB_CMD_PARAM_T& request) {
    const auto data = dataOf(request);
    const auto dcmd = headOf<_SL_DCMD_INPUT_T>(request);
    if (is(request, kPassThroughType, kDcmdCommand) && dcmd) {
        std::string text = hexOfBytes(data.data(), offsetof(_SL_DCMD_INPUT_T, data));
        if ((dcmd->direction & kDcmdToController) != 0 && dcmd->data != nullptr && dcmd->dataSize != 0)
            text.append(":").append(hexOfBytes(static_cast<const std::uint8_t*>(dcmd->data), dcmd->dataSize));
        return text;
    }
    if (is(request, kPassThroughType, kScsiCommand) && data.size() >= sizeof(_SL_SCSI_PASSTHRU_T))
        return hexOfBytes(data.data(), sizeof(_SL_SCSI_PASSTHRU_T));
    const Command* command = findCommand(request);
    if (command != nullptr && command->data == Data::kWrite && !data.empty())
        return hexOfBytes(data.data(), data.size());
    return "-";
}

} // namespace zebsim
