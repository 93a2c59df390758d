#include "commands/zebcli_cmd_ld/setting_tables.h"

#include "main/zebcli_cmd_com/model/lookup.h"

#include <algorithm>

const std::array<SettingItem, 3> setitemAccessPolicy{{
    {"Read Write", kReadWrite},
    {"Read Only", kReadOnly},
    {"Blocked", kBlocked},
}};
const std::array<SettingItem, 3> setitemDiskCachePolicy{{
    {"Unchanged", kDiskCacheUnchanged},
    {"Enabled", kDiskCacheEnabled},
    {"Disabled", kDiskCacheDisabled},
}};
const std::array<SettingItem, 2> setitemReadPolicy{{
    {"No Read Ahead", kNoReadAhead},
    {"Always Read Ahead", kReadAhead},
}};
const std::array<SettingItem, 2> setitemIOPolicy{{
    {"Direct IO", kDirectIo},
    {"Cached IO", kCachedIo},
}};
const std::array<SettingItem, 3> defaultSetWritePolicy{{
    {"Write Through", kWriteThrough},
    {"Always Write Back", kAlwaysWriteBack},
    {"Write Back", kWriteBack},
}};
const std::array<SettingItem, 8> defaultSetStripeSize{{
    {"8K", 4},
    {"16K", 5},
    {"32K", 6},
    {"64K", 7},
    {"128K", 8},
    {"256K", 9},
    {"512K", 10},
    {"1M", 11},
}};

std::array<SettingItem, 3> setitemWritePolicy{};
unsigned setitemWritePolicyCount = 0;
std::array<SettingItem, 8> setitemStripeSize{};
unsigned setitemStripeSizeCount = 0;

void SetSupportWritePolicy(unsigned char contNo, const _AFCONT* conts) {
    const bool cacheBackup = IsCacheBkupPresent(conts, contNo) != 0;
    setitemWritePolicyCount = 0;
    for (const SettingItem& row : defaultSetWritePolicy)
        if (row.value != kWriteBack || cacheBackup)
            setitemWritePolicy[setitemWritePolicyCount++] = row;
}

void SetSupportStripeSize(unsigned char contNo, const _AFCONT* conts) {
    const unsigned smallest = conts[contNo].ctrlInfo.stripeSizeMin;
    const unsigned largest = conts[contNo].ctrlInfo.stripeSizeMax;
    const auto match = std::find_if(defaultSetStripeSize.begin(), defaultSetStripeSize.end(),
                                    [&](const SettingItem& row) { return row.value == smallest; });
    auto label = match != defaultSetStripeSize.end() ? match : defaultSetStripeSize.begin();
    setitemStripeSizeCount = 0;
    for (unsigned code = smallest; code <= largest && label != defaultSetStripeSize.end(); ++code, ++label) {
        SettingItem& row = setitemStripeSize[setitemStripeSizeCount++];
        row = *label;
        row.value = static_cast<std::uint16_t>(code);
    }
}

const char* settingLabel(std::span<const SettingItem> table, unsigned value) {
    const auto row =
        std::find_if(table.begin(), table.end(), [&](const SettingItem& item) { return item.value == value; });
    return row != table.end() ? row->label : "";
}

std::span<const SettingItem> supportedWritePolicies() {
    return std::span(setitemWritePolicy).first(setitemWritePolicyCount);
}

std::span<const SettingItem> supportedStripeSizes() {
    return std::span(setitemStripeSize).first(setitemStripeSizeCount);
}
