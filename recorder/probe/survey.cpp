#include "recorder/probe/survey.h"

#include "storelib/records/all.h"
#include "storelib/records/views.h"

#include <algorithm>
#include <cstring>

namespace zebprobe {

namespace {

constexpr std::uint32_t kFirstOpcode = 0x01000000;
constexpr std::uint32_t kFirstScsi = 0xFF000000;
constexpr std::uint32_t kSectorSize = 512;
constexpr std::uint32_t kLogPageSize = 128;
constexpr std::uint32_t kLargestConfig = 4U << 20U;
constexpr std::uint32_t kLargestSnapshot = 1U << 20U;

bool isCommand(Question question) {
    return question >= kFirstOpcode && question < kFirstScsi;
}

Bytes pattern(std::size_t size) {
    Bytes bytes(size);
    for (std::size_t i = 0; i < size; ++i)
        bytes[i] = zebrec::patternByte(i);
    return bytes;
}

std::size_t writtenOf(const Bytes& bytes) {
    std::size_t wrote = bytes.size();
    while (wrote != 0 && bytes[wrote - 1] == zebrec::patternByte(wrote - 1))
        --wrote;
    return wrote;
}

const wire::RecordLayout* layoutOf(Question question) {
    if (question >= kFirstScsi)
        return &wire::Layout<_SL_SCSI_PASSTHRU_T>::kRecord;
    if (isCommand(question))
        return zebrec::findDcmd(question)->data.layout;
    const zebrec::Data data =
        zebrec::findRequest(static_cast<std::uint8_t>(question >> 8U), static_cast<std::uint8_t>(question))->data;
    return data.shape == zebrec::Shape::kConfiguration ? &wire::Layout<_MR_CONFIG_DATA>::kRecord : data.layout;
}

/// The answer as a record; zeros where there is none.
template <class Record>
Record recordOf(const Answered* answered) {
    Record record{};
    if (answered != nullptr && answered->status == 0)
        std::memcpy(&record, answered->bytes.data(), std::min(sizeof record, answered->bytes.size()));
    return record;
}

std::string objectOf(std::size_t ctrl, Question question, std::uint32_t reference) {
    const std::uint32_t type = isCommand(question) ? 0 : question >> 8U & 0xFFU;
    const std::string number = " " + std::to_string(reference) + " of ";
    const std::string controller = "controller " + std::to_string(ctrl);
    if (question < kPartition)
        return "the library";
    if (question >= kFirstScsi || type == 0x02)
        return "physical drive" + number + controller;
    if (type == 0x03 || question == kPartition || question == kSnapshotInfo || question == kSnapshotSpace)
        return "logical drive" + number + controller;
    if (question == kArrayInfo)
        return "array" + number + controller;
    return type == 0x08 ? "enclosure" + number + controller : controller;
}

} // namespace

const Answered* Survey::find(std::size_t ctrl, Question question, std::uint32_t reference, bool again) const {
    const auto place = places_.find({ctrl, question, reference, again});
    return place == places_.end() ? nullptr : place->second;
}

Answered& Survey::keep(std::size_t ctrl, Question question, std::uint32_t reference, bool again) {
    Answered& answered = all_.emplace_back();
    answered.layout = layoutOf(question);
    answered.carrier = isCommand(question) ? &wire::Layout<_SL_DCMD_INPUT_T>::kRecord : nullptr;
    answered.object = objectOf(ctrl, question, reference);
    places_[{ctrl, question, reference, again}] = &answered;
    return answered;
}

void Survey::sendCommand(wire::_SL_LIB_CMD_PARAM_T& request, Question question, Answered& answered) {
    wire::_SL_DCMD_INPUT_T input{};
    input.dataSize = request.dataSize;
    input.opcode = question;
    input.direction = wire::kDcmdFromController;
    input.mailbox[0] = request.param.bytes[0];
    input.data = answered.bytes.data();
    request.param = {};
    request.ref = {};
    request.data = &input;
    request.dataSize = sizeof input;
    answered.status = session_.process(request);
}

/// LOG SENSE (SPC-3) or READ(10) of the first sector (SBC-3).
void Survey::sendScsi(wire::_SL_LIB_CMD_PARAM_T& request, Question question, Answered& answered) {
    const auto operation = static_cast<std::uint8_t>(question >> 16U);
    const bool reads = question == kBootSector;
    wire::_SL_SCSI_PASSTHRU_T head{};
    head.deviceId = request.ref.pdRef.deviceId;
    head.kind = reads ? 0 : 1;
    head.direction = 2;
    head.timeout = reads ? 180 : 10;
    head.cdbLength = sizeof head.cdb;
    head.cdb[0] = operation;
    head.cdb[2] = reads ? std::uint8_t{0} : static_cast<std::uint8_t>(0x40U | (question & 0x3FU));
    head.cdb[8] = reads ? std::uint8_t{1} : std::uint8_t{kLogPageSize};
    head.dataLength = reads ? kSectorSize : kLogPageSize;
    answered.bytes = pattern(sizeof head + head.dataLength);
    std::memcpy(answered.bytes.data(), &head, sizeof head);
    request.data = answered.bytes.data();
    request.dataSize = static_cast<std::uint32_t>(answered.bytes.size());
    answered.status = session_.process(request);
}

const Answered& Survey::ask(std::size_t ctrl, Question question, std::uint32_t reference, bool again,
                            std::uint32_t size, std::uint16_t parameter) {
    Answered& answered = keep(ctrl, question, reference, again);
    if (size == 0 && answered.layout != nullptr)
        size = static_cast<std::uint32_t>(answered.layout->size);
    wire::_SL_LIB_CMD_PARAM_T request{};
    request.cmdType = static_cast<std::uint8_t>(question < kFirstOpcode ? question >> 8U : 0x06U);
    request.cmd = static_cast<std::uint8_t>(question < kFirstOpcode ? question : isCommand(question) ? 0x03U : 0x00U);
    request.ctrlId = ctrl < ids_.size() ? ids_[ctrl] : 0;
    if (question != kPartition)
        request.ref.all = reference;
    request.param.word = parameter;
    answered.bytes = pattern(size);
    request.data = answered.bytes.data();
    request.dataSize = size;
    if (question >= kFirstScsi)
        sendScsi(request, question, answered);
    else if (isCommand(question))
        sendCommand(request, question, answered);
    else
        answered.status = session_.process(request);
    answered.past = session_.exchange().past;
    answered.wrote = writtenOf(answered.bytes);
    return answered;
}

void Survey::askConfig(std::size_t ctrl, Question question, std::uint32_t reference, bool again) {
    const auto head = recordOf<_MR_CONFIG_DATA>(&ask(ctrl, question, reference, again, wire::kSmallestConfigSize));
    if (head.size > wire::kSmallestConfigSize && head.size <= kLargestConfig)
        ask(ctrl, question, reference, again, head.size);
}

void Survey::askSnapshot(std::size_t ctrl, Question question, std::uint32_t targetId) {
    const Answered& first =
        ask(ctrl, question, targetId, false, sizeof(std::uint32_t), static_cast<std::uint16_t>(targetId));
    std::uint32_t size = 0;
    if (first.status == 0)
        std::memcpy(&size, first.bytes.data(), sizeof size);
    if (size > sizeof size && size <= kLargestSnapshot)
        ask(ctrl, question, targetId, true, size, static_cast<std::uint16_t>(targetId));
}

void Survey::askPartitions(std::size_t ctrl) {
    const auto map = recordOf<_SL_LD_OS_MAP_T>(find(ctrl, kOsMap));
    for (const auto& entry : entriesOf(map))
        ask(ctrl, kPartition, entry.targetId & 0xFFU, false, wire::kPartitionReplySize,
            static_cast<std::uint16_t>((entry.targetId & 0xFFU) << 8U | (entry.partitionArg & 0xFFU)));
}

void Survey::askDrive(std::size_t ctrl, std::uint32_t deviceId) {
    for (const Question question : {kPdInfo, kPdProgress, kPdAllowedOps, kLogPages, kBootSector})
        ask(ctrl, question, deviceId);
    const Answered* pages = find(ctrl, kLogPages, deviceId);
    constexpr std::uint8_t kTemperaturePage = 0x0D;
    const auto list = std::span(pages->bytes).subspan(sizeof(_SL_SCSI_PASSTHRU_T));
    const auto listed = list.subspan(4).first(std::min<std::size_t>(list[3], list.size() - 4));
    if (pages->status == 0 && std::ranges::find(listed, kTemperaturePage) != listed.end())
        ask(ctrl, kTemperature, deviceId);
}

void Survey::askLd(std::size_t ctrl, std::uint32_t targetId) {
    for (const Question question : {kLdInfo, kLdProperties, kLdProgress, kPdInLd, kLdAllowedOps})
        ask(ctrl, question, targetId);
    const auto info = recordOf<_MR_LD_INFO>(find(ctrl, kLdInfo, targetId));
    if (info.config.snapshotSource != 0)
        askSnapshot(ctrl, kSnapshotInfo, targetId);
    if ((info.snapshotUse & wire::kLdIsRepository) != 0)
        askSnapshot(ctrl, kSnapshotSpace, targetId);
}

void Survey::askController(std::size_t ctrl) {
    for (const Question question :
         {kCtrlInfo, kCtrlProp, kPci, kDriver, kPatrolRead, kPdList, kEnclList, kLdList, kOsMap, kClock, kMfcDefaults,
          kConnectors, kForeignGuids, kBbuStatus, kBbuCapacity, kBbuDesign, kBbuProperties})
        ask(ctrl, question, 0, false, question == kClock ? sizeof(std::uint32_t) : 0);
    askConfig(ctrl, kConfig, 0);
    askConfig(ctrl, kForeignConfig, wire::kAllForeignConfigs);
    askPartitions(ctrl);
    for (const std::uint32_t drive : drives(ctrl))
        askDrive(ctrl, drive);
    for (const std::uint32_t ld : lds(ctrl))
        askLd(ctrl, ld);
    for (const std::uint32_t array : arrays(ctrl))
        ask(ctrl, kArrayInfo, array);
    for (const std::uint32_t enclosure : enclosures(ctrl))
        for (const Question question : {kEnclConfig, kEnclStatus})
            ask(ctrl, question, enclosure);
}

void Survey::askAgain(std::size_t ctrl) {
    for (const Question question : {kCtrlInfo, kPdList, kEnclList, kLdList})
        ask(ctrl, question, 0, true);
    askConfig(ctrl, kConfig, 0, true);
    for (const std::uint32_t drive : drives(ctrl))
        ask(ctrl, kPdInfo, drive, true);
    for (const std::uint32_t ld : lds(ctrl))
        ask(ctrl, kLdInfo, ld, true);
    ask(ctrl, kClock, 0, true, sizeof(std::uint32_t));
}

bool Survey::run() {
    const Answered& listed = ask(0, kCtrlList);
    const auto list = recordOf<_SL_CTRL_LIST_T>(&listed);
    if (listed.status != 0)
        return false;
    for (const std::uint32_t id : controllersOf(list))
        ids_.push_back(id);
    std::ranges::sort(ids_, {}, [](std::uint32_t id) { return id & 0xFFFFFFU; });
    ask(0, kVersion);
    for (std::size_t ctrl = 0; ctrl < ids_.size(); ++ctrl)
        askController(ctrl);
    for (std::size_t ctrl = 0; ctrl < ids_.size(); ++ctrl)
        askAgain(ctrl);
    wire::_SL_LIB_CMD_PARAM_T request{};
    request.cmd = kExit;
    session_.process(request);
    return !ids_.empty();
}

namespace {

/// The numbers, each once: a list that names an object twice is asked about it once.
std::vector<std::uint32_t> distinct(std::vector<std::uint32_t> numbers) {
    std::sort(numbers.begin(), numbers.end());
    numbers.erase(std::unique(numbers.begin(), numbers.end()), numbers.end());
    return numbers;
}

} // namespace

std::vector<std::uint32_t> Survey::drives(std::size_t ctrl) const {
    const auto list = recordOf<_MR_PD_LIST>(find(ctrl, kPdList));
    std::vector<std::uint32_t> ids;
    for (const auto& entry : entriesOf(list))
        if (entry.scsiDevType == wire::kScsiDisk)
            ids.push_back(entry.deviceId);
    return distinct(std::move(ids));
}

std::vector<std::uint32_t> Survey::lds(std::size_t ctrl) const {
    const auto list = recordOf<_MR_LD_LIST>(find(ctrl, kLdList));
    std::vector<std::uint32_t> ids;
    for (const auto& entry : entriesOf(list))
        ids.push_back(entry.targetId);
    return distinct(std::move(ids));
}

std::vector<std::uint32_t> Survey::enclosures(std::size_t ctrl) const {
    const auto list = recordOf<_MR_ENCL_LIST>(find(ctrl, kEnclList));
    std::vector<std::uint32_t> ids;
    for (const auto& entry : entriesOf(list))
        ids.push_back(entry.deviceId);
    return distinct(std::move(ids));
}

std::vector<std::uint32_t> Survey::arrays(std::size_t ctrl) const {
    const Answered* answered = find(ctrl, kConfig);
    std::vector<std::uint32_t> refs;
    if (answered == nullptr || answered->status != 0)
        return refs;
    Bytes copy = answered->bytes;
    for (const auto& array : arraysOf(reinterpret_cast<_MR_CONFIG_DATA*>(copy.data()), copy.size()))
        refs.push_back(array.arrayRef);
    return distinct(std::move(refs));
}

} // namespace zebprobe
