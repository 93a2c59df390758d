// LD settings: name and policies.
#include "commands/handlers.h"

#include "commands/zebcli_cmd_ld/ld_targets.h"
#include "commands/zebcli_cmd_ld/setting_tables.h"
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
#include <utility>

namespace {

constexpr Speaker kHandler{kLdSource, "CliCmdExecLDSetProp"};
constexpr unsigned kName = 0x0001;
constexpr unsigned kWb = 0x0004;
constexpr unsigned kWbcb = 0x0008;
constexpr unsigned kRa = 0x0020;
constexpr unsigned kCached = 0x0080;
constexpr unsigned kWriteGroup = 0x0002 | kWb | kWbcb;
constexpr unsigned kReadGroup = 0x0010 | kRa;
constexpr unsigned kIoGroup = 0x0040 | kCached;
constexpr unsigned kAccessGroup = 0x0100 | 0x0200 | 0x0400;
constexpr unsigned kDiskCacheGroup = 0x0800 | 0x1000 | 0x2000;

/// What of a current write policy is kept when no write option is given; the bit between is not.
constexpr std::uint8_t kKeptWritePolicy = 0x11;

/// A policy option: "-wb" is always write back, "-wbcb" the plain one.
struct PolicyWord {
    OptionWord option;
    std::uint8_t value;
};
constexpr auto kPolicyWords = std::to_array<PolicyWord>({
    {{.word = "wt", .bit = 0x0002, .refusedAfter = kWriteGroup}, kWriteThrough},
    {{.word = "wb", .bit = kWb, .refusedAfter = kWriteGroup}, kAlwaysWriteBack},
    {{.word = "wbcb", .bit = kWbcb, .refusedAfter = kWriteGroup}, kWriteBack},
    {{.word = "nora", .bit = 0x0010, .refusedAfter = kReadGroup}, kNoReadAhead},
    {{.word = "ra", .bit = kRa, .refusedAfter = kReadGroup}, kReadAhead},
    {{.word = "direct", .bit = 0x0040, .refusedAfter = kIoGroup}, kDirectIo},
    {{.word = "cached", .bit = kCached, .refusedAfter = kIoGroup}, kCachedIo},
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
constexpr std::array<OptionWord, kPolicyWords.size() + 1> makeWords() {
    std::array<OptionWord, kPolicyWords.size() + 1> words{};
    words[0] = {.word = "name", .bit = kName, .refusedAfter = kName, .acceptsValue = isName};
    for (std::size_t i = 0; i < kPolicyWords.size(); ++i)
        words[i + 1] = kPolicyWords[i].option;
    return words;
}
constexpr auto kWords = makeWords();
constexpr OptionTable kOptions = ldOptions(kWords);

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
    const std::uint8_t cache = current.defaultCachePolicy;
    const unsigned read = policyOr(options, kReadGroup, cache & kReadPolicyMask);
    const unsigned write = policyOr(options, kWriteGroup, cache & kKeptWritePolicy);
    const unsigned io = policyOr(options, kIoGroup, cache & kIoPolicyMask);
    return {static_cast<std::uint8_t>(io | write | read), policyOr(options, kAccessGroup, current.accessPolicy),
            policyOr(options, kDiskCacheGroup, current.diskCachePolicy)};
}

bool controllerSupports(const Options& options, Controller ctrl) {
    const std::uint32_t operations = ctrl.cont().ctrlInfo.ldOperations;
    const auto lacks = [&](unsigned bits, std::uint32_t operation) {
        return options.has(bits) && (operations & operation) == 0;
    };
    return !lacks(kWb | kWbcb, kLdOpWritePolicy) && !lacks(kRa, kLdOpReadPolicy) && !lacks(kCached, kLdOpIoPolicy) &&
           !(options.has(kWbcb) && IsCacheBkupPresent(ctrl.conts, ctrl.contNo) == 0);
}

/// The checks and the questions before the first change. Returns false when the command is over.
bool mayChange(const Options& options, std::span<const unsigned char> controllers, const _AFCONT* conts) {
    if (options.has(kWriteGroup) && IsSoftwareRAID() != 0) {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - This command is not supported at the current configuration.");
        return false;
    }
    for (const unsigned char contNo : controllers)
        if (!controllerSupports(options, {contNo, conts})) {
            CliLogging(kPrintAndLog, kLdSource, __LINE__,
                       "Error - The specified parameter is not supported at the current configuration.");
            return false;
        }
    return !options.has(kWb) || std::all_of(controllers.begin(), controllers.end(), [&](unsigned char contNo) {
        return confirmed(IsCacheBkupPresent(conts, contNo) != 0 ? kAskWriteBackWithBackup : kAskWriteBackWithoutBackup);
    });
}

/// Reads an LD afresh; a failure is traced.
bool readLd(unsigned char contNo, unsigned char ldNo, _MR_LD_INFO& ld) {
    return succeeded(SLGetLDInfo(contNo, ldNo, &ld), kHandler, "SLGetLDInfo error", onLdWithoutCommas(contNo, ldNo));
}

bool readGroup(unsigned char contNo, std::uint16_t arrayRef, _SL_ARRAY_INFO_T& group) {
    return succeeded(SLGetArrayInfo(contNo, arrayRef, &group), kHandler, "SLGetArrayInfo error",
                     onArray(contNo, arrayRef));
}

/// The change of the LDs of one controller: what is done so far, and the LD that failed.
class ControllerChange {
  public:
    ControllerChange(const Options& options, unsigned char contNo, const _AFCONT* conts, bool& saidGroup)
        : options_(options), contNo_(contNo), conts_(conts), saidGroup_(saidGroup) {}

    /// Changes the LD and, for anything but its name, the others of its group. Returns false at the first failure,
    /// which a group is that does not hold the LD.
    bool change(unsigned char ldNo) {
        _MR_LD_INFO ld{};
        _SL_ARRAY_INFO_T group{};
        failedLd_ = ldNo;
        if (!readLd(contNo_, ldNo, ld) || !readGroup(contNo_, ld.config.span[0].arrayRef, group))
            return false;
        if (ld.config.cacheCade != 0)
            return true;
        const Policies policies = makePolicies(options_, ld.config.properties);
        if (options_.bits == kName)
            return write(ldNo, policies, true);
        const std::span lds(group.ldTargetId, std::min<std::size_t>(group.ldCount, std::size(group.ldTargetId)));
        if (lds.size() > 1)
            sayGroup();
        // The record is believed only where the controller lists the LD, and once.
        auto isMember = [&, met = std::array<bool, 256>{}](unsigned char member) mutable {
            return IsExistLD(contNo_, member, conts_) != 0 && !std::exchange(met[member], true);
        };
        return std::find(lds.begin(), lds.end(), ldNo) != lds.end() &&
               std::all_of(lds.begin(), lds.end(), [&](unsigned char member) {
                   return !isMember(member) || write(member, policies, member == ldNo && options_.has(kName));
               });
    }

    void sayDone() const {
        if (!done_.empty())
            CliLogging(kPrint, kLdSource, __LINE__,
                       "Information - Controller[%d] LD(Logical Drive) Settings have been changed on "
                       "LD(Logical Drive) %s.",
                       contNo_, done_.c_str());
    }

    void sayFailed() const {
        CliLogging(kPrintAndLog, kLdSource, __LINE__,
                   "Error - Controller[%d] Failed to change LD(Logical Drive) %d Settings.", contNo_, failedLd_);
    }

  private:
    void sayGroup() {
        if (!saidGroup_)
            CliLogging(kPrintAndLog, kLdSource, __LINE__,
                       "Information - Apply the same settings for all the LDs(Logical Drives) of the same RAID Group.");
        saidGroup_ = true;
    }

    /// Writes one LD. What is not set goes back as it was read, the sequence number included.
    bool write(unsigned char ldNo, const Policies& policies, bool named) {
        failedLd_ = ldNo;
        _MR_LD_INFO ld{};
        if (!readLd(contNo_, ldNo, ld))
            return false;
        _MR_LD_PROPERTIES properties = ld.config.properties;
        properties.ref.targetId = ldNo;
        if (named) {
            std::fill(std::begin(properties.name), std::end(properties.name), '\0');
            std::copy_n(options_.value, std::min(std::strlen(options_.value), sizeof properties.name - 1),
                        properties.name);
        }
        properties.defaultCachePolicy = policies.cache;
        properties.accessPolicy = policies.access;
        properties.diskCachePolicy = policies.diskCache;
        if (!succeeded(SLSetLDProperties(contNo_, &properties), kHandler, "SLSetLDProperties error",
                       onLd(contNo_, ldNo)))
            return false;
        if (!written_[ldNo])
            done_.add(ldNo);
        written_[ldNo] = true;
        return true;
    }

    const Options& options_;
    unsigned char contNo_;
    const _AFCONT* conts_;
    bool& saidGroup_;
    unsigned char failedLd_ = 0;
    std::array<bool, 256> written_{}; // by LD number: an LD of a group is written once for each selected LD of it
    NumberList done_;
};

} // namespace

int CliCmdExecLDSetProp(int argc, char** argv, _AFCONT* conts, int contCount) {
    dumpLog(kLdSource, __LINE__, __func__);
    Options options;
    if (!readArguments(kOptions, argc, argv, contCount, options))
        return 1;
    const auto controllers = selectedControllers(options.ctrls, contCount);
    if (!mayChange(options, controllers, conts))
        return 1;
    bool saidGroup = false;
    for (const unsigned char contNo : controllers) {
        const SelectedLds lds = selectedLds(options.lds, {contNo, conts});
        ControllerChange change(options, contNo, conts, saidGroup);
        const bool changed =
            std::all_of(lds.list().begin(), lds.list().end(), [&](unsigned char ldNo) { return change.change(ldNo); });
        change.sayDone();
        if (!changed) {
            change.sayFailed();
            return 1;
        }
    }
    return 0;
}
