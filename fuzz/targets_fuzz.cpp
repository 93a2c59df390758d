// The parsers of targets and options: each target form by itself, then a whole command line through the handlers, so
// that every option table is used.
//
// Input: the number of controllers, then a command line. Its last word is also read as each of the target forms.
#include "commands/handlers.h"
#include "fuzz/library.h"
#include "fuzz/support.h"
#include "main/command_table.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/input/targets.h"

#include <algorithm>

namespace {

/// Whether the used entries stand in front, each below the limit and given once.
template <class List>
bool isTargetList(const List& list, unsigned limit) {
    const auto used = std::find(list.begin(), list.end(), kNoTarget);
    List sorted = list;
    std::sort(sorted.begin(), sorted.end());
    const auto last = sorted.begin() + (used - list.begin());
    return std::all_of(used, list.end(), [](unsigned char entry) { return entry == kNoTarget; }) &&
           std::adjacent_find(sorted.begin(), last) == last &&
           std::all_of(list.begin(), used, [&](unsigned char entry) { return entry < limit; });
}

void parseControllers(const char* text, int contCount) {
    CtrlList list;
    list.fill(kNoTarget);
    const int verdict = GetAdapterNo(text, list, contCount);
    // A fifth number ends the scan with the first four as they stand, so only a list with room left is sorted.
    if (verdict == kAdapterOk)
        fuzz::require(isTargetList(list, static_cast<unsigned>(contCount)) &&
                          (list.back() != kNoTarget || std::is_sorted(list.begin(), list.end())),
                      "an accepted controller list names each controller once, in ascending order");
    if (verdict == kAdapterMissing)
        fuzz::require(list[0] >= contCount && list[0] < list.size(), "the missing controller stands first");
    fuzz::require(verdict != kAdapterAmbiguous || (*text == '\0' && contCount > 1), "only silence is ambiguous");
}

void parseLds(const char* text) {
    LdList list;
    list.fill(kNoTarget);
    if (GetLogicalDriveNo(text, list) == 1)
        fuzz::require(isTargetList(list, list.size()), "an accepted LD list names each LD once");
}

void parsePds(const char* text) {
    PdList ordered;
    PdList sorted;
    const int verdict = GetPhysicalDriveNo(text, ordered, 1);
    fuzz::require(GetPhysicalDriveNo(text, sorted, 0) == verdict, "the order asked for changes no verdict");
    if (verdict != 1)
        return;
    // Slot 255 reads as an empty place, so only the sorted list has all of them behind.
    fuzz::require(isTargetList(sorted, kNoTarget) && std::is_sorted(sorted.begin(), sorted.end()) &&
                      std::is_permutation(ordered.begin(), ordered.end(), sorted.begin()),
                  "an accepted PD list names each slot once and can be sorted");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::useLibrary(kMaxControllers);
    static fuzz::Snapshot snapshot(kMaxControllers);
    fuzz::Input input(data, size);
    const int contCount = 1 + input.byte() % snapshot.count();
    fuzz::CommandLine line(input.rest());
    const OptionText text = optionText(line.argv()[line.argc() - 1]);
    parseControllers(text.c_str(), contCount);
    parseLds(text.c_str());
    parsePds(text.c_str());

    const CommandRow* row = line.argc() > 1 ? findCommand(optionText(line.argv()[1]).c_str()) : nullptr;
    fuzz::typeAnswers({});
    for (const CommandRow& other : commandRows())
        if (other.handler != CliCmdExecLog && (row == nullptr || row->handler == other.handler))
            other.handler(line.argc(), line.argv(), snapshot.conts(), contCount);
    return 0;
}
