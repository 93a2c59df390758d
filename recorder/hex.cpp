#include "recorder/hex.h"

#include <algorithm>
#include <charconv>

namespace zebrec {

namespace {

constexpr std::size_t kShortestRun = 4; ///< zero bytes that are worth their brackets

int digitOf(char c) {
    if (c >= '0' && c <= '9')
        return c - '0';
    return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

} // namespace

std::string hexOf(std::span<const std::uint8_t> bytes) {
    constexpr char kDigits[] = "0123456789abcdef";
    std::string text;
    text.reserve(bytes.size());
    for (auto at = bytes.begin(); at != bytes.end();) {
        const auto end = std::find_if(at, bytes.end(), [](std::uint8_t byte) { return byte != 0; });
        const auto run = static_cast<std::size_t>(end - at);
        if (run >= kShortestRun) {
            text += '[' + std::to_string(run) + ']';
            at = end;
            continue;
        }
        text += kDigits[*at >> 4U];
        text += kDigits[*at & 0xFU];
        ++at;
    }
    return text;
}

std::optional<std::vector<std::uint8_t>> bytesOfHex(std::string_view text, std::size_t most) {
    std::vector<std::uint8_t> bytes;
    for (std::size_t at = 0; at < text.size();) {
        if (text[at] == '[') {
            std::size_t run = 0;
            const char* last = text.data() + text.size();
            const auto [end, error] = std::from_chars(text.data() + at + 1, last, run);
            if (error != std::errc{} || end == last || *end != ']' || run > most - bytes.size())
                return std::nullopt;
            bytes.resize(bytes.size() + run);
            at = static_cast<std::size_t>(end - text.data()) + 1;
            continue;
        }
        if (text.size() - at < 2 || bytes.size() == most)
            return std::nullopt;
        const int high = digitOf(text[at]);
        const int low = digitOf(text[at + 1]);
        if (high < 0 || low < 0)
            return std::nullopt;
        bytes.push_back(static_cast<std::uint8_t>(high * 16 + low));
        at += 2;
    }
    return bytes;
}

} // namespace zebrec
