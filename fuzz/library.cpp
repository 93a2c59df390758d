#include "fuzz/library.h"

#include "storelib/dll_mod.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <iterator>
#include <unordered_map>

extern "C" std::uint32_t ProcessLibCommand(_SL_LIB_CMD_PARAM_T* request); // the simulated library's

namespace {

using Room = std::span<std::uint8_t>;

constexpr std::uint8_t kAny = 255;
constexpr std::uint8_t kPassThrough = 0x06;
constexpr std::uint8_t kDcmd = 0x03;

fuzz::Bytes changesInForce;
unsigned requestNumber = 0;

/// Whether what the request points to goes out, so that it is no room for an answer.
bool carriesData(const _SL_LIB_CMD_PARAM_T& request) {
    static constexpr std::uint8_t kWriting[][2] = {{0x01, 0x02}, {0x01, 0x10}, {0x02, 0x0B}, {0x03, 0x02}};
    return std::any_of(std::begin(kWriting), std::end(kWriting),
                       [&](const auto& row) { return row[0] == request.cmdType && row[1] == request.cmd; });
}

/// Where the answer goes, behind the header of a pass-through.
Room roomOf(const _SL_LIB_CMD_PARAM_T& request) {
    if (request.data == nullptr || carriesData(request))
        return {};
    const Room data{static_cast<std::uint8_t*>(request.data), request.dataSize};
    if (request.cmdType != kPassThrough)
        return data;
    if (request.cmd != kDcmd)
        return data.subspan(sizeof(_SL_SCSI_PASSTHRU_T));
    _SL_DCMD_INPUT_T input;
    std::memcpy(&input, request.data, sizeof input);
    const bool reads = input.data != nullptr && input.direction == kDcmdFromController;
    return reads ? Room{static_cast<std::uint8_t*>(input.data), input.dataSize} : Room{};
}

/// Answers as the simulator does, which is asked once for each question: the model stands still. Large answers, and
/// those behind a number of questions that only sizes at random bring about, are not kept.
void answerFromModel(_SL_LIB_CMD_PARAM_T& request, Room room) {
    constexpr std::size_t kLargestKept = 16U << 10U;
    constexpr std::size_t kMostKept = 4096;
    static std::unordered_map<std::string, std::vector<std::uint8_t>> known;
    std::string question(reinterpret_cast<const char*>(&request), offsetof(_SL_LIB_CMD_PARAM_T, data));
    if (request.cmdType == kPassThrough)
        question.append(static_cast<const char*>(request.data), offsetof(_SL_DCMD_INPUT_T, data));
    const auto answer = known.find(question);
    if (answer != known.end())
        std::copy(answer->second.begin(), answer->second.end(), room.begin());
    else if (ProcessLibCommand(&request) == kSlSuccess && room.size() <= kLargestKept && known.size() < kMostKept)
        known.emplace(question, std::vector<std::uint8_t>(room.begin(), room.end()));
}

void change(Room room, unsigned offset, fuzz::Bytes bytes, bool repeated) {
    if (room.empty() || bytes.empty())
        return;
    const Room from = room.subspan(offset % room.size());
    std::size_t filled = std::min(from.size(), bytes.size());
    std::copy_n(bytes.begin(), filled, from.begin());
    for (std::size_t step = 0; repeated && filled < from.size(); filled += step) {
        step = std::min(filled, from.size() - filled);
        std::memcpy(&from[filled], from.data(), step);
    }
}

std::uint32_t answer(_SL_LIB_CMD_PARAM_T* request) {
    const unsigned number = ++requestNumber;
    const Room room = roomOf(*request);
    if (!room.empty())
        answerFromModel(*request, room);
    for (fuzz::Input changes(changesInForce.data(), changesInForce.size()); !changes.rest().empty();) {
        const std::uint8_t type = changes.byte();
        const std::uint8_t cmd = changes.byte();
        const std::uint8_t reference = changes.byte();
        const unsigned first = changes.byte();
        const unsigned low = changes.byte();
        const unsigned offset = low | static_cast<unsigned>(changes.byte()) << 8U;
        const std::uint8_t length = changes.byte();
        const fuzz::Bytes bytes = changes.take(length & 0x7FU);
        if (number < first || (reference != kAny && reference != (request->ref.all & 0xFFU)) ||
            (type != kAny && (type != request->cmdType || cmd != request->cmd)))
            continue;
        if (length == 0)
            return offset;
        change(room, offset, bytes, (length & 0x80U) != 0);
    }
    return kSlSuccess;
}

/// The controllers of the built-in scenario. Nothing of the environment counts.
_SL_CTRL_LIST_T startLibrary() {
    for (const char* name : {"ZEBSIM_SCENARIO", "ZEBSIM_STATE", "ZEBSIM_FAULTS", "ZEBSIM_SPEED", "ZEBSIM_TRACE"})
        unsetenv(name);
    fuzz::require(InitializeLibrary(&gCtrlListMR, ProcessLibCommand) == kSlSuccess, "the simulated library starts");
    mergeControllerLists();
    return ctrlList;
}

} // namespace

void fuzz::useLibrary(unsigned controllers, Bytes changes) {
    static const _SL_CTRL_LIST_T real = startLibrary();
    changesInForce = changes;
    requestNumber = 0;
    ctrlList.count = static_cast<std::uint16_t>(controllers);
    for (unsigned i = 0; i < controllers; ++i)
        ctrlList.ctrl[i] = real.ctrl[i % real.count];
    pfnProcessLibCommandMR = answer;
    libMRPresent = true;
}
