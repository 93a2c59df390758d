// Text fields of wire records as C strings.
#pragma once

#include <cctype>
#include <cstddef>

/// A copy of a text field that can be printed.
template <std::size_t N>
struct FieldText {
    char text[N + 1];
    const char* c_str() const { return text; }
};

/// The text of a field: up to the field's width or its first NUL, whichever comes first. A control character becomes a
/// space, so that no name can break the layout of a report.
template <std::size_t N>
FieldText<N> fieldText(const char (&field)[N]) {
    FieldText<N> out{};
    for (std::size_t i = 0; i < N && field[i] != '\0'; ++i)
        out.text[i] = std::iscntrl(static_cast<unsigned char>(field[i])) != 0 ? ' ' : field[i];
    return out;
}
