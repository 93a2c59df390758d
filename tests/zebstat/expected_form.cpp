#include "tests/zebstat/expected_form.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstdio>
#include <ctime>

namespace zebtest {

std::uint64_t numberIn(const Json& node) {
    return node.is_string() ? std::stoull(node.get<std::string>(), nullptr, 0) : node.get<std::uint64_t>();
}

std::uint64_t number(const Json& object, const char* key, std::uint64_t fallback) {
    return object.contains(key) ? numberIn(object[key]) : fallback;
}

std::int64_t integer(const Json& object, const char* key, std::int64_t fallback) {
    return object.value(key, fallback);
}

bool flag(const Json& object, const char* key, bool fallback) {
    return object.value(key, fallback);
}

Json object(const Json& parent, const char* key) {
    return parent.value(key, Json::object());
}

std::vector<Json> list(const Json& parent, const char* key) {
    return parent.value(key, std::vector<Json>());
}

Json text(const Json& object, const char* key, const std::string& fallback, std::size_t width) {
    // In the form each character is one byte.
    const std::string form = object.value(key, fallback);
    std::string field;
    for (std::size_t i = 0; i < form.size(); ++i) {
        const auto byte = static_cast<unsigned char>(form[i]);
        field += byte < 0x80 ? form[i] : static_cast<char>((byte & 0x03U) << 6U | (form[++i] & 0x3FU));
    }
    field = field.substr(0, std::min(width, field.find('\0')));
    const auto first = field.find_first_not_of(' ');
    if (first == std::string::npos)
        return nullptr;
    field = field.substr(first, field.find_last_not_of(' ') + 1 - first);
    return Json::parse(Json(field).dump(-1, ' ', false, Json::error_handler_t::replace));
}

std::uint64_t code(const Json& object, const char* key, std::uint64_t fallback, const std::vector<std::string>& form) {
    if (!object.contains(key))
        return fallback;
    const auto place = object[key].is_string() ? std::ranges::find(form, object[key].get<std::string>()) : form.end();
    return place != form.end() ? static_cast<std::uint64_t>(place - form.begin()) : numberIn(object[key]);
}

void word(Json& out, const std::string& key, std::uint64_t code, const std::vector<std::string>& words) {
    if (code < words.size() && !words[code].empty()) {
        out[key] = words[code];
    } else {
        out[key] = "unknown";
        out[key + "_code"] = code;
    }
}

std::string hex(std::uint64_t number, int width) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%0*llx", width, static_cast<unsigned long long>(number));
    return text.data();
}

Json time(std::uint64_t seconds) {
    constexpr std::time_t kEpoch = 946684800; // 2000-01-01
    if (seconds == 0 || seconds == 0xFFFFFFFF)
        return nullptr;
    const std::time_t when = kEpoch + static_cast<std::time_t>(seconds);
    std::tm parts{};
    gmtime_r(&when, &parts);
    std::array<char, 32> text{};
    std::strftime(text.data(), text.size(), "%Y-%m-%dT%H:%M:%S", &parts);
    return text.data();
}

Json stripeBytes(std::uint64_t code) {
    return code >= 4 && code <= 11 ? Json(512U << code) : Json();
}

Json bytes(std::uint64_t blocks) {
    return blocks < std::uint64_t{1} << 54U ? Json(blocks * 512) : Json();
}

} // namespace zebtest
