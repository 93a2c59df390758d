#include "facts/text.h"

#include "main/zebcli_cmd_com/text/calendar.h"

#include <array>
#include <cstdio>

namespace facts {

namespace {

constexpr std::string_view kReplacement = "\xEF\xBF\xBD";

/// The bytes that may stand second, and how many follow the first (Unicode Standard, table 3-7).
struct Lead {
    unsigned following;
    unsigned char lowest;
    unsigned char highest;
};

Lead leadOf(unsigned char byte) {
    if (byte >= 0xC2 && byte <= 0xDF)
        return {1, 0x80, 0xBF};
    if (byte >= 0xE0 && byte <= 0xEF)
        return {2, static_cast<unsigned char>(byte == 0xE0 ? 0xA0 : 0x80),
                static_cast<unsigned char>(byte == 0xED ? 0x9F : 0xBF)};
    if (byte >= 0xF0 && byte <= 0xF4)
        return {3, static_cast<unsigned char>(byte == 0xF0 ? 0x90 : 0x80),
                static_cast<unsigned char>(byte == 0xF4 ? 0x8F : 0xBF)};
    return {0, 0, 0};
}

/// The length of the character at the start of the bytes, or of the part of one that is to be replaced.
std::size_t partLength(std::string_view bytes, bool& valid) {
    const auto at = [&](std::size_t i) { return static_cast<unsigned char>(bytes[i]); };
    valid = at(0) < 0x80;
    const Lead lead = leadOf(at(0));
    for (std::size_t i = 1; i <= lead.following; ++i) {
        const bool second = i == 1;
        if (i >= bytes.size() || at(i) < (second ? lead.lowest : 0x80) || at(i) > (second ? lead.highest : 0xBF))
            return i;
        valid = i == lead.following;
    }
    return 1 + lead.following;
}

bool isControl(std::string_view character) {
    const auto first = static_cast<unsigned char>(character[0]);
    if (character.size() == 1)
        return first < 0x20 || first == 0x7F;
    return first == 0xC2 && static_cast<unsigned char>(character[1]) < 0xA0;
}

} // namespace

std::string toUtf8(std::string_view bytes) {
    std::string text;
    while (!bytes.empty()) {
        bool valid = false;
        const std::size_t length = partLength(bytes, valid);
        text += valid ? bytes.substr(0, length) : kReplacement;
        bytes.remove_prefix(length);
    }
    return text;
}

std::optional<std::string> fieldText(std::string_view field) {
    field = field.substr(0, field.find('\0'));
    const std::size_t first = field.find_first_not_of(' ');
    if (first == std::string_view::npos)
        return std::nullopt;
    return toUtf8(field.substr(first, field.find_last_not_of(' ') + 1 - first));
}

std::string printable(std::string_view utf8, char alsoBlank) {
    std::string text;
    while (!utf8.empty()) {
        bool valid = false;
        const std::size_t length = partLength(utf8, valid);
        const std::string_view character = utf8.substr(0, length);
        if (!valid)
            text += kReplacement;
        else if (isControl(character) || character[0] == alsoBlank)
            text += ' ';
        else
            text += character;
        utf8.remove_prefix(length);
    }
    return text;
}

std::optional<std::string> timeText(std::uint32_t seconds) {
    constexpr std::uint32_t kNever = 0xFFFFFFFF;
    if (seconds == 0 || seconds == kNever)
        return std::nullopt;
    const CalendarTime time = SecondToDate(seconds);
    std::array<char, 48> text{};
    std::snprintf(text.data(), text.size(), "%04u-%02u-%02uT%02u:%02u:%02u", time.year, time.month, time.day, time.hour,
                  time.minute, time.second);
    return text.data();
}

std::string hexText(std::uint64_t number, int width) {
    std::array<char, 32> text{};
    std::snprintf(text.data(), text.size(), "%0*llx", width, static_cast<unsigned long long>(number));
    return text.data();
}

} // namespace facts
