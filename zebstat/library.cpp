#include "zebstat/library.h"

#include "facts/text.h"
#include "main/zebcli_cmd_com/base/limits.h"
#include "main/zebcli_cmd_com/input/targets.h"
#include "storelib/dll_mod.h"
#include "storelib/status_text.h"

#include <algorithm>
#include <cctype>

namespace zebstat {

namespace {

/// The text as the tool's own parser of controllers takes it.
std::string optionText(const std::string& controllers) {
    std::string text = "a" + controllers;
    std::ranges::transform(text, text.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return text;
}

} // namespace

std::string controllersComplaint(const std::string& text) {
    CtrlList list{};
    if (GetAdapterNo(optionText(text).c_str(), list, kMaxControllers) == kAdapterOk)
        return {};
    return "'" + text + "' is no list of controllers; give numbers from 0 to " + std::to_string(kMaxControllers - 1) +
           ", such as 0,2, or all";
}

Library::Library(const std::string& controllers) {
    const std::uint32_t status = SLInitLib([] {});
    if (status != kSlSuccess)
        problem_ =
            "libstorelib.so cannot be used: " + facts::fieldText(std::string_view(SLStrError(status))).value_or("") +
            " (0x" + facts::hexText(status, 2) + "); see that it is where the dynamic loader looks";
    else
        problem_ = choose(controllers);
}

Library::~Library() {
    SLExitLib();
}

std::string Library::choose(const std::string& controllers) {
    const int count = ctrlList.count;
    if (count < 1)
        return "no RAID controller is found";
    if (count > static_cast<int>(kMaxControllers))
        return "there are " + std::to_string(count) + " RAID controllers; at most " + std::to_string(kMaxControllers) +
               " are served";
    CtrlList list{};
    list.fill(kNoTarget);
    if (GetAdapterNo(optionText(controllers).c_str(), list, count) != kAdapterOk)
        return "controller " + std::to_string(list[0]) + " does not exist; the highest number is " +
               std::to_string(count - 1);
    for (const unsigned char number : list)
        if (number != kNoTarget)
            chosen_.push_back(number);
    std::ranges::sort(chosen_);
    return {};
}

} // namespace zebstat
