// LD settings: name and policies.
#include "commands/handlers.h"

#include "commands/zebcli_cmd_ld/cache_policy.h"
#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/trace.h"
#include "main/zebcli_cmd_com/input/prompts.h"
#include "main/zebcli_cmd_com/model/live_questions.h"
#include "main/zebcli_cmd_com/text/number_list.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"
#include "storelib/common/StoreLib/configuration.h"
#include "storelib/common/StoreLib/logical_drive.h"
#include "storelib/records/status.h"

#include <algorithm>
#include <array>
#include <cstring>
#include <optional>
#include <utility>

namespace {

constexpr Speaker kPropertiesHandler{kLdSource, "CliCmdExecLDSetProp"};
constexpr unsigned kName = 0x0001;
constexpr unsigned kAccessGroup = 0x0100 | 0x0200 | 0x0400;
constexpr unsigned kDiskCacheGroup = 0x0800 | 0x1000 | 0x2000;

/// An option for another policy than that of the cache.
struct PolicyWord {
    OptionWord option;
    std::uint8_t value;
};
constexpr auto kPolicyWords = std::to_array<PolicyWord>({
    {{.word = "rw", .bit = 0x0100, .refusedAfter = kAccessGroup}, kReadWrite},
    {{.word = "ro", .bit = 0x0200, .refusedAfter = kAccessGroup}, kReadOnly},
    {{.word = "blocked", .bit = 0x0400, .refusedAfter = kAccessGroup}, kBlocked},
    {{.word = "endskcache", .bit = 0x0800, .refusedAfter = kDiskCacheGroup}, kDiskCacheEnabled},
    {{.word = "disdskcache", .bit = 0x1000, .refusedAfter = kDiskCacheGroup}, kDiskCacheDisabled},
    {{.word = "unchanged", .bit = 0x2000, .refusedAfter = kDiskCacheGroup}, kDiskCacheUnchanged},
});

/// A name has to leave room for a NUL in the properties.
bool isName(const char* value) {
    return std::strlen(value) < sizeof(_MR_LD_PROPERTIES::name);
}

/// The option words: the name, then the policies.
constexpr auto makeWords() {
    std::array<OptionWord, 1 + kCachePolicyWords.size() + kPolicyWords.size()> words{};
    auto* next = words.begin();
    *next++ = {.word = "name", .bit = kName, .refusedAfter = kName, .acceptsValue = isName};
    for (const CachePolicyWord& word : kCachePolicyWords)
        *next++ = word.option;
    for (const PolicyWord& word : kPolicyWords)
        *next++ = word.option;
    return words;
}
constexpr auto kPropertyWords = makeWords();

/// The value of the group's option when one was given, else what is kept of the current value.
std::uint8_t policyOr(const Options& options, unsigned group, std::uint8_t kept) {
    const auto* word = std::find_if(kPolicyWords.begin(), kPolicyWords.end(), [&](const PolicyWord& row) {
        return row.option.refusedAfter == group && options.has(row.option.bit);
    });
    return word != kPolicyWords.end() ? word->value : kept;
}

struct Policies {
    std::uint8_t cache;
    std::uint8_t access;
    std::uint8_t diskCache;
};

Policies makePolicies(const Options& options, const _MR_LD_PROPERTIES& current) {
    return {withCachePolicyWords(options, current.defaultCachePolicy & kKeptCachePolicy),
            policyOr(options, kAccessGroup, current.accessPolicy),
            policyOr(options, kDiskCacheGroup, current.diskCachePolicy)};
}

/// Why the settings cannot be changed, null when they can.
const char* obstacle(const Options& options, std::span<const unsigned char> controllers, const _AFCONT* conts) {
    if (options.has(kWriteWords) && IsSoftwareRAID() != 0)
        return "Error - This command is not supported at the current configuration.";
    const bool supported = std::all_of(controllers.begin(), controllers.end(), [&](unsigned char contNo) {
        return supportsCachePolicyWords(options, {contNo, conts});
    });
    return supported ? nullptr : "Error - The specified parameter is not supported at the current configuration.";
}

/// Asks for each controller that has a selected LD whether to write back always. Returns false at the first no.
bool askAlwaysWriteBack(const Options& options, std::span<const unsigned char> controllers, const _AFCONT* conts) {
    return std::all_of(controllers.begin(), controllers.end(), [&](unsigned char contNo) {
        return selectedLds(options.lds, {contNo, conts}).count == 0 ||
               confirmed(IsCacheBkupPresent(conts, contNo) != 0 ? kAskWriteBackWithBackup : kAskWriteBackWithoutBackup);
    });
}

/// Reads an LD afresh; a failure is traced.
bool readLd(Controller ctrl, unsigned char ldNo, _MR_LD_INFO& ld) {
    return succeeded(SLGetLDInfo(ctrl.contNo, ldNo, &ld), kPropertiesHandler, "SLGetLDInfo error",
                     onLdWithoutCommas(ctrl.contNo, ldNo));
}

/// Reads the group of an LD afresh, that of its first span; a failure is traced.
bool readGroup(Controller ctrl, const _MR_LD_CONFIG& ld, _SL_ARRAY_INFO_T& group) {
    const std::uint16_t arrayRef = ld.span[0].arrayRef;
    return succeeded(SLGetArrayInfo(ctrl.contNo, arrayRef, &group), kPropertiesHandler, "SLGetArrayInfo error",
                     onArray(ctrl.contNo, arrayRef));
}

/// Says once per run that a change reaches further LDs than the selected ones.
class GroupNotice {
  public:
    void say() {
        if (!std::exchange(said_, true))
            CliLogging(kPrintAndLog, kLdSource, __LINE__,
                       "Information - Apply the same settings for all the LDs(Logical Drives) of the same RAID Group.");
    }

  private:
    bool said_ = false;
};

/// The change of the selected LDs of one controller.
struct Change {
    const Options& options;
    Controller ctrl;
    std::span<const unsigned char> selected;
    NumberList done{};
    std::array<bool, kByteValues> handled{}; ///< by LD number: the LDs of the groups that were changed
};

using FailedLd = std::optional<unsigned char>;

/// Writes one LD: the policies, and the name that was given where the LD is a selected one. What is not set goes back
/// as it was read, the sequence number included.
bool writeLd(Change& change, unsigned char ldNo, const Policies& policies) {
    _MR_LD_INFO ld{};
    if (!readLd(change.ctrl, ldNo, ld))
        return false;
    _MR_LD_PROPERTIES properties = ld.config.properties;
    properties.ref.targetId = ldNo;
    const auto selected = std::find(change.selected.begin(), change.selected.end(), ldNo);
    if (change.options.has(kName) && selected != change.selected.end()) {
        std::fill(std::begin(properties.name), std::end(properties.name), '\0');
        std::copy_n(change.options.value, std::strlen(change.options.value), properties.name);
    }
    properties.defaultCachePolicy = policies.cache;
    properties.accessPolicy = policies.access;
    properties.diskCachePolicy = policies.diskCache;
    if (!succeeded(SLSetLDProperties(change.ctrl.contNo, &properties), kPropertiesHandler, "SLSetLDProperties error",
                   onLd(change.ctrl.contNo, ldNo)))
        return false;
    change.done.add(ldNo);
    change.handled[ldNo] = true;
    return true;
}

/// Writes each LD of a group that the controller lists, once, in the group's order. Returns the LD that failed; that is
/// the selected one where the group does not hold it.
FailedLd writeGroup(Change& change, const _SL_ARRAY_INFO_T& group, unsigned char selected, const Policies& policies) {
    const auto lds = ldsOf(group);
    if (std::find(lds.begin(), lds.end(), selected) == lds.end())
        return selected;
    for (const unsigned char ldNo : lds)
        if (!change.handled[ldNo] && IsExistLD(change.ctrl.contNo, ldNo, change.ctrl.conts) != 0 &&
            !writeLd(change, ldNo, policies))
            return ldNo;
    return {};
}

/// Changes the group of a selected LD, or with a name alone only the LD itself; a CacheCade LD is left as it is.
/// Returns the LD that failed.
FailedLd changeGroup(Change& change, unsigned char ldNo, GroupNotice& notice) {
    _MR_LD_INFO ld{};
    _SL_ARRAY_INFO_T group{};
    if (!readLd(change.ctrl, ldNo, ld) || !readGroup(change.ctrl, ld.config, group))
        return ldNo;
    if (ld.config.cacheCade != 0)
        return {};
    const Policies policies = makePolicies(change.options, ld.config.properties);
    if (change.options.bits == kName)
        return writeLd(change, ldNo, policies) ? FailedLd{} : ldNo;
    if (ldsOf(group).size() > 1)
        notice.say();
    return writeGroup(change, group, ldNo, policies);
}

/// Changes each group that has a selected LD once. Returns the LD that failed.
FailedLd changeLds(Change& change, GroupNotice& notice) {
    for (const unsigned char ldNo : change.selected)
        if (!change.handled[ldNo])
            if (const FailedLd failed = changeGroup(change, ldNo, notice))
                return failed;
    return {};
}

void sayDone(unsigned char contNo, const NumberList& lds) {
    if (!lds.empty())
        CliLogging(kPrint, kLdSource, __LINE__,
                   "Information - Controller[%d] LD(Logical Drive) Settings have been changed on "
                   "LD(Logical Drive) %s.",
                   contNo, lds.c_str());
}

} // namespace

constexpr OptionTable kLdSetPropOptions = ldOptions(kPropertyWords);

int CliCmdExecLDSetProp(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kLdSource, __LINE__, __func__);
    Options options;
    if (!readArguments(kLdSetPropOptions, argc, argv, contCount, options))
        return 1;
    const auto controllers = selectedControllers(options.ctrls, contCount);
    if (const char* text = obstacle(options, controllers, conts); text != nullptr) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__, "%s", text);
        return 1;
    }
    if (options.has(kWb) && !askAlwaysWriteBack(options, controllers, conts))
        return 1;
    GroupNotice notice;
    for (const unsigned char contNo : controllers) {
        const Controller ctrl{contNo, conts};
        const SelectedLds lds = selectedLds(options.lds, ctrl);
        if (lds.count == 0)
            sayNoLd(contNo);
        Change change{.options = options, .ctrl = ctrl, .selected = lds.list()};
        const FailedLd failed = changeLds(change, notice);
        sayDone(contNo, change.done);
        if (failed) {
            CliLogging(kPrintAndLog, kLdSource, __LINE__,
                       "Error - Controller[%d] Failed to change LD(Logical Drive) %d Settings.", contNo, *failed);
            return 1;
        }
    }
    return 0;
}
