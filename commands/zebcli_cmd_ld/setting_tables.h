// The vocabularies of the LD settings: a label and a value each. Two of them depend on the controller and are rebuilt
// for it before use.
#pragma once

#include "main/zebcli_cmd_com/model/snapshot.h"

#include <array>
#include <cstdint>
#include <span>

struct SettingItem {
    char label[64];
    std::uint16_t value;
};

/// Which bits of a cache policy byte hold which setting.
inline constexpr std::uint8_t kReadPolicyMask = 0x0C;
inline constexpr std::uint8_t kWritePolicyMask = 0x13;
inline constexpr std::uint8_t kIoPolicyMask = 0x60;

inline constexpr std::uint8_t kWriteThrough = 0x00;
inline constexpr std::uint8_t kWriteBack = 0x01;
inline constexpr std::uint8_t kAlwaysWriteBack = 0x11;
inline constexpr std::uint8_t kNoReadAhead = 0x00;
inline constexpr std::uint8_t kReadAhead = 0x04;
inline constexpr std::uint8_t kDirectIo = 0x00;
inline constexpr std::uint8_t kCachedIo = 0x60;

enum AccessPolicy : std::uint8_t { kReadWrite = 0, kReadOnly = 2, kBlocked = 3 };
enum DiskCachePolicy : std::uint8_t { kDiskCacheUnchanged = 0, kDiskCacheEnabled = 1, kDiskCacheDisabled = 2 };

extern const std::array<SettingItem, 3> setitemAccessPolicy;
extern const std::array<SettingItem, 3> setitemDiskCachePolicy;
extern const std::array<SettingItem, 2> setitemReadPolicy;
extern const std::array<SettingItem, 2> setitemIOPolicy;
extern const std::array<SettingItem, 3> defaultSetWritePolicy;
extern const std::array<SettingItem, 8> defaultSetStripeSize;

/// The working copies for one controller, and how many rows of each are in use.
extern std::array<SettingItem, 3> setitemWritePolicy;
extern unsigned setitemWritePolicyCount;
extern std::array<SettingItem, 8> setitemStripeSize;
extern unsigned setitemStripeSizeCount;

/// Rebuilds the write policies: without a cache backup unit there is no plain write back, but always write back stays.
void SetSupportWritePolicy(unsigned char contNo, const _AFCONT* conts);

/// Rebuilds the stripe sizes from the smallest to the largest code that the controller takes.
void SetSupportStripeSize(unsigned char contNo, const _AFCONT* conts);

/// The label of the first row with that value, "" when there is none.
const char* settingLabel(std::span<const SettingItem> table, unsigned value);

/// The rows in use of the working copies.
std::span<const SettingItem> supportedWritePolicies();
std::span<const SettingItem> supportedStripeSizes();
