// Texts and times of the hardware as plain UTF-8.
#pragma once

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>

namespace facts {

/// Bytes as UTF-8: each part that is none becomes U+FFFD, as the Unicode Standard recommends (chapter 3, maximal
/// subparts).
std::string toUtf8(std::string_view bytes);

/// A text field: up to its first NUL, without the blanks around it, as UTF-8. Nothing when it is empty then.
std::optional<std::string> fieldText(std::string_view field);
template <std::size_t N>
std::optional<std::string> fieldText(const char (&field)[N]) {
    return fieldText(std::string_view(field, N));
}

/// The text with every control character, C0, DEL and C1, and every "|" where that is asked for, as a blank. It can be
/// printed to a terminal.
std::string printable(std::string_view utf8, char alsoBlank = ' ');

/// A controller's time, seconds since 2000-01-01, as "YYYY-MM-DDThh:mm:ss". Nothing for 0 and for all ones.
std::optional<std::string> timeText(std::uint32_t seconds);

/// A number in lower-case hexadecimal digits of that width.
std::string hexText(std::uint64_t number, int width);

} // namespace facts
