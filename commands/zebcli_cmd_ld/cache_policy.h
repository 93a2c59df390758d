// The option words of the cache policy of an LD, which changing and creating LDs share.
#pragma once

#include "commands/zebcli_cmd_ld/setting_tables.h"
#include "main/zebcli_cmd_com/input/options.h"
#include "main/zebcli_cmd_com/model/snapshot.h"

#include <array>
#include <cstdint>

enum CachePolicyBit : unsigned {
    kWt = 0x0002,
    kWb = 0x0004,
    kWbcb = 0x0008,
    kNoRa = 0x0010,
    kRa = 0x0020,
    kDirect = 0x0040,
    kCached = 0x0080,
};
inline constexpr unsigned kWriteWords = kWt | kWb | kWbcb;
inline constexpr unsigned kReadWords = kNoRa | kRa;
inline constexpr unsigned kIoWords = kDirect | kCached;

/// A word, and what it puts in the place of the policy's bits: "-wb" is always write back, "-wbcb" the plain one.
struct CachePolicyWord {
    OptionWord option;
    std::uint8_t mask;
    std::uint8_t value;
};
inline constexpr auto kCachePolicyWords = std::to_array<CachePolicyWord>({
    {{.word = "wt", .bit = kWt, .refusedAfter = kWriteWords}, kWritePolicyMask, kWriteThrough},
    {{.word = "wb", .bit = kWb, .refusedAfter = kWriteWords}, kWritePolicyMask, kAlwaysWriteBack},
    {{.word = "wbcb", .bit = kWbcb, .refusedAfter = kWriteWords}, kWritePolicyMask, kWriteBack},
    {{.word = "nora", .bit = kNoRa, .refusedAfter = kReadWords}, kReadPolicyMask, kNoReadAhead},
    {{.word = "ra", .bit = kRa, .refusedAfter = kReadWords}, kReadPolicyMask, kReadAhead},
    {{.word = "direct", .bit = kDirect, .refusedAfter = kIoWords}, kIoPolicyMask, kDirectIo},
    {{.word = "cached", .bit = kCached, .refusedAfter = kIoWords}, kIoPolicyMask, kCachedIo},
});

/// The policy with the settings of the words that were given in the place of its own.
std::uint8_t withCachePolicyWords(const Options& options, std::uint8_t cachePolicy);

/// What of an LD's policy a change keeps where it sets nothing; the other bits are not settings.
inline constexpr std::uint8_t kKeptCachePolicy = kReadPolicyMask | kAlwaysWriteBack | kIoPolicyMask;

/// Whether the controller can set what the words say.
bool supportsCachePolicyWords(const Options& options, Controller ctrl);
