// Whole commands over the replay of a recording.
//
// Input: the command line up to a newline, what the operator types up to a NUL, the recording.
#include "commands/handlers.h"
#include "fuzz/library.h"
#include "fuzz/support.h"
#include "main/command_table.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "simulator/replay.h"
#include "storelib/dll_mod.h"

namespace {

std::unique_ptr<zebsim::Replay> replay;

std::uint32_t answer(_SL_LIB_CMD_PARAM_T* request) {
    return replay->answer(*request);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    fuzz::CommandLine line(input.takeUntil('\n'));
    fuzz::typeAnswers(input.takeUntil('\0'));
    std::string reason;
    auto recording = zebrec::readRecording(fuzz::textOf(input.rest()), reason);
    if (!recording || line.argc() < 2)
        return 0;
    const CommandRow* row = findCommand(optionText(line.argv()[1]).c_str());
    if (row == nullptr || row->handler == CliCmdExecLog) // starts programs
        return 0;
    replay = zebsim::Replay::of(std::move(*recording));
    ctrlList = gCtrlListMR = {};
    if (InitializeLibrary(&gCtrlListMR, answer) != kSlSuccess)
        return 0;
    mergeControllerLists();
    pfnProcessLibCommandMR = answer;
    libMRPresent = true;
    if (ctrlList.count == 0 || ctrlList.count > kMaxControllers)
        return 0;
    fuzz::Snapshot snapshot(ctrlList.count);
    if (snapshot.filled())
        row->handler(line.argc(), line.argv(), snapshot.conts(), snapshot.count());
    return 0;
}
