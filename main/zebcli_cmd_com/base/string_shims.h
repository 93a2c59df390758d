// The one set of string routines that the report code uses. They carry the names of another platform's routines, but
// every one is bounded: those that take a size honour it, the others take their destination as an array, so that its
// size is known.
#pragma once

#include <algorithm>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstring>

/// Formats into size bytes, cutting what does not fit. Returns the length of the text written.
[[gnu::format(printf, 3, 4)]] inline int sprintf_s(char* out, std::size_t size, const char* format, ...) {
    if (size == 0)
        return 0;
    va_list args;
    va_start(args, format);
    const int length = std::vsnprintf(out, size, format, args);
    va_end(args);
    if (length < 0)
        out[0] = '\0';
    return std::clamp(length, 0, static_cast<int>(size) - 1);
}

/// Copies text into size bytes, cutting what does not fit.
inline void strcpy_s(char* out, std::size_t size, const char* text) {
    if (size == 0)
        return;
    const std::size_t length = strnlen(text, size - 1);
    std::memcpy(out, text, length);
    out[length] = '\0';
}

/// Appends text to what stands in size bytes, cutting what does not fit.
inline void strcat_s(char* out, std::size_t size, const char* text) {
    const std::size_t used = strnlen(out, size);
    strcpy_s(out + used, size - used, text);
}

/// The next token of text, or of what context remembers when text is null; null when there is none.
inline char* strtok_s(char* text, const char* separators, char** context) {
    return strtok_r(text, separators, context);
}

/// Formats into the array, cutting what does not fit. Returns the length of the text written.
template <std::size_t N>
[[gnu::format(printf, 2, 3)]] int wsprintf(char (&out)[N], const char* format, ...) {
    va_list args;
    va_start(args, format);
    const int length = std::vsnprintf(out, N, format, args);
    va_end(args);
    if (length < 0)
        out[0] = '\0';
    return std::clamp(length, 0, static_cast<int>(N) - 1);
}

/// Appends text to what stands in the array, cutting what does not fit.
template <std::size_t N>
void lstrcat(char (&out)[N], const char* text) {
    strcat_s(out, N, text);
}

/// Clears a block of size bytes.
inline void ZeroMemory(void* block, std::size_t size) {
    std::memset(block, 0, size);
}
