// The parts of the JSON document, object by object.
#pragma once

#include "facts/controller.h"

#include <nlohmann/json.hpp>

#include <optional>
#include <string>
#include <vector>

namespace zebstat {

using Json = nlohmann::ordered_json;

template <class T>
Json orNull(const std::optional<T>& value) {
    return value ? Json(*value) : Json(nullptr);
}

/// A list that could be read, each item by its writer; null for one that could not.
template <class T, class Write>
Json listOrNull(const std::optional<std::vector<T>>& items, Write write) {
    if (!items)
        return nullptr;
    Json list = Json::array();
    for (const T& item : *items)
        list.push_back(write(item));
    return list;
}

/// Puts a code's word under the key, and beside it the code of one that has no word.
void putWord(Json& object, const std::string& key, const std::optional<facts::Word>& word);

/// Puts what went wrong, if anything.
void putError(Json& object, const std::optional<facts::Failure>& error);

Json operationList(const std::vector<facts::Operation>& operations);

Json controllerOf(const facts::Controller& controller);
Json cacheBackupOf(const facts::CacheBackup& unit);
Json enclosureOf(const facts::Enclosure& enclosure);
Json physicalDriveOf(const facts::PhysicalDrive& drive);
Json raidGroupOf(const facts::RaidGroup& group);
Json logicalDriveOf(const facts::LogicalDrive& ld);

} // namespace zebstat
