// Help and version.
#include "commands/handlers.h"

#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/command_table.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/text/text_field.h"
#include "storelib/common/StoreLib/controller.h"
#include "storelib/records/status.h"

#include <algorithm>
#include <string>
#include <string_view>
#include <vector>

namespace {

constexpr char kProductName[] = "Quorvel RAID Pellucor";
constexpr char kProductVersion[] = "2.3";
constexpr char kFileVersion[] = "2.2.0.6";
constexpr int kRightsYear = 2026;

/// The part of the usage of ldc that a controller without CacheCade is spared.
constexpr std::string_view kCacheCadePart = " | -cachecade[{E0}:S0,{E1}:S1,...]";

std::span<const CommandRow> helpRows;

/// The lines of all commands in their order.
std::string usageLines(bool withCacheCade) {
    std::vector<const CommandRow*> shown;
    for (const CommandRow& row : helpRows)
        if (row.usage != nullptr)
            shown.push_back(&row);
    std::sort(shown.begin(), shown.end(),
              [](const CommandRow* a, const CommandRow* b) { return a->usagePlace < b->usagePlace; });
    std::string lines;
    for (const CommandRow* row : shown)
        lines.append(row->usage).append("\n");
    if (const std::size_t part = lines.find(kCacheCadePart); !withCacheCade && part != lines.npos)
        lines.erase(part, kCacheCadePart.size());
    return lines;
}

/// The first controller with an advanced option decides; FastPath plays no part.
bool offersCacheCade(const _AFCONT* conts, int contCount) {
    for (int contNo = 0; contNo < contCount; ++contNo) {
        const unsigned mask = IsEnablePF(static_cast<unsigned char>(contNo), conts);
        if ((mask & (kOptionCacheCade | kOptionSnapshot)) != 0)
            return (mask & kOptionCacheCade) != 0;
    }
    return false;
}

} // namespace

void setHelpRows(std::span<const CommandRow> rows) {
    helpRows = rows;
}

int CliCmdExecHelp(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kCtrlSource, __LINE__, __func__);
    if (refuseArguments(kCtrlSource, argc, argv))
        return 1;
    CliLogging(kPrint, kCtrlSource, __LINE__,
               "%s\n%s Command Line Tool Ver %s\n"
               "Copyright (C) %d QUORVEL, Ltd. All rights reserved.",
               usageLines(offersCacheCade(conts, contCount)).c_str(), kProductName, kProductVersion, kRightsYear);
    return 0;
}

int CliCmdExecVersion(int argc, char** argv, _AFCONT* /*conts*/, int /*contCount*/) {
    dumpLog(kCtrlSource, __LINE__, __func__);
    if (refuseArguments(kCtrlSource, argc, argv))
        return 1;
    char libraryVersion[sizeof(_SL_LIB_VER_T) + 2] = {};
    _SL_LIB_VER_T version{};
    if (SLGetLibraryVersion(&version) == kSlSuccess)
        wsprintf(libraryVersion, "%s.%s", fieldText(version.version).c_str(), fieldText(version.revision).c_str());
    CliLogging(kPrint, kCtrlSource, __LINE__,
               "%s Command Line Tool\n"
               "   Product Name     : %s\n"
               "   Product Version  : %s\n"
               "   Company Name     : QUORVEL, Ltd.\n"
               "   File Version     : %s\n"
               "   StoreLib Version : %s\n"
               "   Copyright (C) %d QUORVEL, Ltd. All rights reserved.",
               kProductName, kProductName, kProductVersion, kFileVersion, libraryVersion, kRightsYear);
    return 0;
}
