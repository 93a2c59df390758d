#include "facts/collect.h"

#include "facts/collect_parts.h"
#include "facts/text.h"
#include "storelib/common/StoreLib/controller.h"
#include "storelib/dll_mod.h"

#include <array>
#include <ctime>
#include <unistd.h>

namespace facts {

namespace {

std::string ownHostName() {
    std::array<char, 256> name{};
    gethostname(name.data(), name.size() - 1);
    return toUtf8(name.data());
}

std::string utcNow() {
    const std::time_t now = std::time(nullptr);
    std::tm time{};
    gmtime_r(&now, &time);
    std::array<char, 48> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%SZ", &time);
    return text.data();
}

void collectLibraryVersion(Collection& collection) {
    _SL_LIB_VER_T record{};
    ++collection.requests;
    if (const auto failure = failureOf(SLGetLibraryVersion(&record))) {
        collection.errors.push_back({{}, "SLGetLibraryVersion", *failure});
        return;
    }
    const auto version = fieldText(record.version);
    const auto revision = fieldText(record.revision);
    if (version || revision)
        collection.libraryVersion = version.value_or("") + "." + revision.value_or("");
}

Controller collectController(Asker& asker, Scope scope) {
    constexpr std::uint32_t kIdBits = 0x00FFFFFF;
    Controller controller;
    controller.number = asker.contNo();
    controller.id = ctrlList.ctrl[controller.number] & kIdBits;
    if (scope == Scope::Everything) {
        if (!collectInfo(asker, controller))
            return controller;
        collectSettings(asker, controller);
        collectCacheBackup(asker, controller);
        collectEnclosures(asker, controller);
    }
    collectPhysicalDrives(asker, controller, scope);
    collectRaidGroups(asker, controller, scope);
    collectLogicalDrives(asker, controller, scope);
    return controller;
}

} // namespace

Collection collect(std::span<const std::uint8_t> controllers, Scope scope) {
    const auto start = std::chrono::steady_clock::now();
    Collection collection;
    collection.hostName = ownHostName();
    collection.hostTime = utcNow();
    if (scope == Scope::Everything)
        collectLibraryVersion(collection);
    for (const std::uint8_t number : controllers) {
        Asker asker(collection, number);
        collection.controllers.push_back(collectController(asker, scope));
    }
    collection.duration = std::chrono::steady_clock::now() - start;
    return collection;
}

} // namespace facts
