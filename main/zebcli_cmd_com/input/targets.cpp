#include "main/zebcli_cmd_com/input/targets.h"

#include "log/raidctl.h"
#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"

#include <algorithm>
#include <cstddef>
#include <numeric>
#include <string_view>

namespace {

constexpr unsigned kLargestNumber = 100000; // where a number of any length stops growing
constexpr std::size_t kLdDigits = 2;
constexpr std::size_t kPdDigits = 3;
constexpr unsigned kHighestPdValue = 256; // one more than there are slots
constexpr std::size_t kPdRoom = kMaxSlots - 1; // behind it stands the end mark

bool isDigit(char c) {
    return c >= '0' && c <= '9';
}

/// The digits at the start of a text.
std::string_view leadingDigits(std::string_view text) {
    const auto end = std::find_if_not(text.begin(), text.end(), isDigit);
    return text.substr(0, static_cast<std::size_t>(end - text.begin()));
}

unsigned numberOf(std::string_view digits) {
    unsigned number = 0;
    for (const char c : digits)
        number = std::min(number * 10 + static_cast<unsigned>(c - '0'), kLargestNumber);
    return number;
}

bool hasLeadingZero(std::string_view digits) {
    return digits.size() > 1 && digits.front() == '0';
}

/// Takes one controller number into the list.
int addController(unsigned number, CtrlList& list, std::size_t& stored, int contCount) {
    const auto used = list.begin() + static_cast<std::ptrdiff_t>(stored);
    if (std::find(list.begin(), used, number) != used || number >= kMaxControllers || stored == list.size())
        return kAdapterMalformed;
    if (number >= static_cast<unsigned>(contCount)) {
        list[0] = static_cast<unsigned char>(number);
        return kAdapterMissing;
    }
    list[stored++] = static_cast<unsigned char>(number);
    return kAdapterOk;
}

/// Takes one number into a list of LDs or PDs; false for one that is there already.
template <std::size_t N>
bool addTarget(unsigned char number, std::array<unsigned char, N>& list, std::size_t& stored) {
    const auto used = list.begin() + static_cast<std::ptrdiff_t>(stored);
    if (stored == N || std::find(list.begin(), used, number) != used)
        return false;
    list[stored++] = number;
    return true;
}

int parseControllers(std::string_view text, CtrlList& list, int contCount) {
    std::size_t stored = 0;
    while (true) {
        const std::string_view digits = leadingDigits(text);
        text.remove_prefix(digits.size());
        const bool last = text.empty();
        if (digits.empty() || (!last && text.front() != ',') || hasLeadingZero(digits) || text == ",")
            return kAdapterMalformed;
        if (!last && stored == list.size())
            return kAdapterOk; // deliberate: a fifth number with a comma behind it ends the scan without complaint
        if (const int verdict = addController(numberOf(digits), list, stored, contCount); verdict != kAdapterOk)
            return verdict;
        if (last)
            break;
        text.remove_prefix(1);
    }
    std::sort(list.begin(), list.end());
    return kAdapterOk;
}

} // namespace

int GetAdapterNo(const char* text, CtrlList& list, int contCount) {
    dumpLog(kComSource, __LINE__, __func__);
    const std::string_view option(text);
    if (option == "aall") {
        for (int i = 0; i < std::min<int>(contCount, static_cast<int>(list.size())); ++i)
            list[static_cast<std::size_t>(i)] = static_cast<unsigned char>(i);
        return kAdapterOk;
    }
    if (option.empty()) {
        if (contCount == 1) {
            list[0] = 0;
            return kAdapterOk;
        }
        CliLogging(kPrintAndLog, kComSource, __LINE__,
                   "Error - There are multiple RAID controllers. Please set the RAID controller number.");
        return kAdapterAmbiguous;
    }
    return parseControllers(option.substr(1), list, contCount);
}

int GetLogicalDriveNo(const char* text, LdList& list) {
    dumpLog(kComSource, __LINE__, __func__);
    std::string_view option(text);
    if (option.empty() || option == "lall") {
        std::iota(list.begin(), list.end(), static_cast<unsigned char>(0));
        return 1;
    }
    option.remove_prefix(1);
    for (std::size_t stored = 0; !option.empty();) {
        const std::string_view digits = leadingDigits(option);
        option.remove_prefix(digits.size());
        if (digits.empty() || digits.size() > kLdDigits || (!option.empty() && option.front() != ','))
            return 0;
        if (!option.empty() && stored == kMaxLds - 1)
            return 0;
        const unsigned number = numberOf(digits);
        if (!addTarget(static_cast<unsigned char>(number), list, stored) || number >= kMaxLds)
            return 0;
        option.remove_prefix(std::min<std::size_t>(option.size(), 1));
    }
    return 1;
}

int GetPhysicalDriveNo(const char* text, PdList& list, unsigned char keepOrder) {
    dumpLog(kComSource, __LINE__, __func__);
    list.fill(kNoTarget);
    std::string_view rest(text);
    if (rest.empty()) {
        std::iota(list.begin(), list.end(), static_cast<unsigned char>(0));
        return 1;
    }
    if (rest.find(':') == std::string_view::npos)
        return 0;
    std::size_t stored = 0;
    for (std::size_t colon = rest.find(':'); colon != std::string_view::npos; colon = rest.find(':')) {
        rest.remove_prefix(colon + 1);
        const std::string_view digits = leadingDigits(rest);
        rest.remove_prefix(digits.size());
        if (digits.empty() || digits.size() > kPdDigits || rest.empty() ||
            (rest.front() != ',' && rest != std::string_view("]")))
            return 0;
        const unsigned value = numberOf(digits);
        if (value > kHighestPdValue || stored == kPdRoom)
            return 0;
        // Deliberate: 256 passes and wraps to slot 0.
        if (!addTarget(static_cast<unsigned char>(value), list, stored))
            return 0;
    }
    if (keepOrder == 0)
        std::sort(list.begin(), list.end());
    return 1;
}
