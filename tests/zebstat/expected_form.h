// How the scenario form is read, and the values of the document that follow from one number or text of it.
#pragma once

#include <nlohmann/json.hpp>

#include <cstdint>
#include <string>
#include <vector>

namespace zebtest {

using Json = nlohmann::json;

std::uint64_t numberIn(const Json& node); ///< a number, or text such as "0x1F"
std::uint64_t number(const Json& object, const char* key, std::uint64_t fallback);
std::int64_t integer(const Json& object, const char* key, std::int64_t fallback);
bool flag(const Json& object, const char* key, bool fallback);
Json object(const Json& parent, const char* key); ///< an empty one when it is missing
std::vector<Json> list(const Json& parent, const char* key);
/// A text field of that many bytes as the document shows it: null when nothing is left of it.
Json text(const Json& object, const char* key, const std::string& fallback, std::size_t width);
/// The place of a word in the form's list, or the number that stands in its place.
std::uint64_t code(const Json& object, const char* key, std::uint64_t fallback, const std::vector<std::string>& form);
/// The document's word for a code; an empty one counts as none.
void word(Json& out, const std::string& key, std::uint64_t code, const std::vector<std::string>& words);
std::string hex(std::uint64_t number, int width);
Json time(std::uint64_t seconds);
Json stripeBytes(std::uint64_t code);
Json bytes(std::uint64_t blocks);

inline constexpr std::uint16_t kNoEnclosure = 0xFFFF;

} // namespace zebtest
