#include "commands/zebcli_cmd_ld/cache_policy.h"

#include "log/zebcli_log.h"
#include "main/zebcli_cmd_com/base/source.h"
#include "main/zebcli_cmd_com/model/lookup.h"

std::uint8_t withCachePolicyWords(const Options& options, std::uint8_t cachePolicy) {
    for (const CachePolicyWord& word : kCachePolicyWords)
        if (options.has(word.option.bit))
            cachePolicy = static_cast<std::uint8_t>((cachePolicy & ~word.mask) | word.value);
    return cachePolicy;
}

bool supportsCachePolicyWords(const Options& options, Controller ctrl) {
    const std::uint32_t operations = ctrl.cont().ctrlInfo.ldOperations;
    const auto lacks = [&](unsigned bits, std::uint32_t operation) {
        return options.has(bits) && (operations & operation) == 0;
    };
    return !lacks(kWb | kWbcb, kLdOpWritePolicy) && !lacks(kRa, kLdOpReadPolicy) && !lacks(kCached, kLdOpIoPolicy) &&
           !(options.has(kWbcb) && IsCacheBkupPresent(ctrl.conts, ctrl.contNo) == 0);
}
