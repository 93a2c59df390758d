#include "commands/zebcli_cmd_ld/creation/custom_options.h"

#include "commands/zebcli_cmd_ld/cache_policy.h"
#include "main/zebcli_cmd_com/base/source.h"

#include <algorithm>
#include <array>
#include <charconv>
#include <string_view>
#include <utility>

namespace {

constexpr auto policyWords() {
    std::array<OptionWord, kCachePolicyWords.size()> words{};
    std::transform(kCachePolicyWords.begin(), kCachePolicyWords.end(), words.begin(),
                   [](const CachePolicyWord& word) { return word.option; });
    return words;
}
constexpr auto kCustomWords = policyWords();
constexpr OptionTable kOptions{
    .source = kLdSource, .badToken = BadToken::Itself, .words = kCustomWords, .takesControllers = true};

/// A layout word with drives behind it.
struct LayoutWord {
    std::string_view text;
    ZEB_RAID_LVL level;
    bool cacheCade;
};
constexpr auto kLayouts = std::to_array<LayoutWord>({
    {"r0[", kRaid0, false},
    {"r1[", kRaid1, false},
    {"r5[", kRaid5, false},
    {"r6[", kRaid6, false},
    {"cachecade[", kRaid0, true},
});
constexpr std::string_view kSpannedLayout = "r10";
constexpr std::string_view kSpanWord = "array";
constexpr std::string_view kSizeWord = "sz";
constexpr std::size_t kDrivesPerSpan = 2;
constexpr std::ptrdiff_t kLeastSpans = 2;
constexpr std::size_t kLongestSpanNumber = 2; // digits
constexpr std::size_t kLongestSize = 9;

/// A number without sign and leading zero, of at most that many digits, at the start of the text, and its length;
/// nothing when there is none.
struct LeadingNumber {
    std::uint32_t value;
    std::size_t length;
};
std::optional<LeadingNumber> leadingNumber(std::string_view text, std::size_t mostDigits) {
    const auto* const end = std::find_if(text.begin(), text.end(), [](char c) { return c < '0' || c > '9'; });
    const auto length = static_cast<std::size_t>(end - text.begin());
    if (length == 0 || length > mostDigits || (length > 1 && text.front() == '0'))
        return std::nullopt;
    std::uint32_t value = 0;
    std::from_chars(text.data(), text.data() + length, value);
    return LeadingNumber{value, length};
}

/// The enclosure of a drive, as it stands in front of the ":". False for anything but digits.
bool readEnclosure(std::string_view text, std::optional<std::uint32_t>& enclosure) {
    if (!std::all_of(text.begin(), text.end(), [](char c) { return c >= '0' && c <= '9'; }))
        return false;
    constexpr std::size_t kLongestId = 5;
    enclosure = std::nullopt;
    if (const auto number = leadingNumber(text, kLongestId); number)
        enclosure = std::min<std::uint32_t>(number->value, kNoDevice);
    else if (!text.empty())
        enclosure = kNoDevice;
    return true;
}

/// Drives as "[E:S,E:S]". What stands between the slots must be enclosures, so that a forgotten ":" is not taken for
/// one; and no slot is above 255, which elsewhere wraps.
bool readDrives(const char* list, NamedDrives& drives) {
    PdList slots;
    if (GetPhysicalDriveNo(list, slots, 1) != 1)
        return false;
    std::string_view text(list);
    for (std::size_t i = 0; text != "]" && i < slots.size(); ++i) {
        const std::size_t colon = text.find(':');
        NamedDrive drive{slots[i], std::nullopt};
        if (colon == std::string_view::npos || !readEnclosure(text.substr(1, colon - 1), drive.enclosure))
            return false;
        text.remove_prefix(colon + 1);
        const std::string_view slot = text.substr(0, text.find_first_of(",]"));
        if (slot == "256")
            return false;
        text.remove_prefix(slot.size());
        drives.add(drive);
    }
    return true;
}

/// What the command reads beside policies and controllers.
class LayoutArguments final : public OwnArguments {
  public:
    explicit LayoutArguments(CustomRequest& request) : request_(request) {}

    Verdict take(const OptionText& option, const char* argument) override {
        const std::string_view text(option.text);
        if (text == kSpannedLayout)
            return takeLayout(kRaid10, false, nullptr, argument);
        for (const LayoutWord& word : kLayouts)
            if (text.starts_with(word.text))
                return takeLayout(word.level, word.cacheCade, option.text + word.text.size() - 1, argument);
        if (text.starts_with(kSpanWord))
            return takeSpan(option.text + kSpanWord.size(), argument);
        return text.starts_with(kSizeWord) ? takeSize(text.substr(kSizeWord.size())) : Verdict::NotMine;
    }

    /// Whether all arguments together make a layout; where they do not, which of them is to be named.
    bool isComplete(const char* thirdArgument, const char*& named) {
        named = layout_ == nullptr ? (firstSpan_ != nullptr ? firstSpan_ : thirdArgument) : firstSpan_;
        if (layout_ == nullptr || (request_.level != kRaid10 && firstSpan_ != nullptr))
            return false;
        return request_.level != kRaid10 || joinSpans(named);
    }

  private:
    struct Span {
        const char* argument = nullptr;
        NamedDrives drives;
    };

    static Verdict verdict(bool taken) { return taken ? Verdict::Taken : Verdict::Refused; }

    Verdict takeLayout(ZEB_RAID_LVL level, bool cacheCade, const char* drives, const char* argument) {
        if (layout_ != nullptr || (cacheCade && !request_.sizes.empty()))
            return Verdict::Refused;
        layout_ = argument;
        request_.level = level;
        request_.cacheCade = cacheCade;
        return verdict(drives == nullptr || readDrives(drives, request_.drives));
    }

    Verdict takeSpan(const char* text, const char* argument) {
        if (firstSpan_ == nullptr)
            firstSpan_ = argument;
        const auto number = leadingNumber(text, kLongestSpanNumber);
        if (!number || number->value >= spans_.size() || text[number->length] != '[')
            return Verdict::Refused;
        Span& span = spans_[number->value];
        if (span.argument != nullptr || !readDrives(text + number->length, span.drives) ||
            span.drives.size() != kDrivesPerSpan)
            return Verdict::Refused;
        span.argument = argument;
        return verdict(std::none_of(span.drives.begin(), span.drives.end(), [&](const NamedDrive& drive) {
            return std::exchange(spanned_[drive.slotNo], true);
        }));
    }

    Verdict takeSize(std::string_view text) {
        const auto number = leadingNumber(text, kLongestSize);
        if (!number || number->length != text.size() || number->value == 0 || request_.cacheCade ||
            request_.sizes.size() == kMaxLds)
            return Verdict::Refused;
        request_.sizes.add(number->value);
        return Verdict::Taken;
    }

    /// Puts the drives of the spans one behind the other. There must be no gap in their numbers, and two of them.
    bool joinSpans(const char*& named) {
        const auto given = [](const Span& span) { return span.argument != nullptr; };
        const auto gap = std::find_if_not(spans_.begin(), spans_.end(), given);
        if (const auto behind = std::find_if(gap, spans_.end(), given); behind != spans_.end()) {
            named = behind->argument;
            return false;
        }
        for (const Span& span : spans_)
            for (const NamedDrive& drive : span.drives)
                request_.drives.add(drive);
        named = layout_;
        return gap - spans_.begin() >= kLeastSpans;
    }

    CustomRequest& request_;
    const char* layout_ = nullptr; ///< the argument that named the layout
    const char* firstSpan_ = nullptr;
    std::array<Span, kMaxSpans> spans_{};
    std::array<bool, kMaxSlots> spanned_{}; ///< the slots that are in a span
};

} // namespace

bool readCustomArguments(int argc, char** argv, int contCount, CustomRequest& request, int line) {
    LayoutArguments layout(request);
    if (!parseOptions(kOptions, layout, argc, argv, contCount, request.options, line))
        return false;
    if (const char* named = nullptr; !layout.isComplete(argc > 2 ? argv[2] : nullptr, named)) {
        refuseToken(kOptions.source, line, named);
        return false;
    }
    return selectDefaultTargets(kOptions, contCount, request.options);
}
