// Writing to a file: all of it or the reason, and no signal where the file would grow over its limit.
#pragma once

#include <optional>
#include <string_view>
#include <sys/types.h>

namespace zebrec {

/// Writes the whole text, at an offset or where the file stands. Returns 0, or the errno that says why it could not.
int writeWhole(int file, std::string_view text, std::optional<off_t> at = std::nullopt);

/// Lengthens the file with zeros to so many bytes. Returns the same.
int growTo(int file, off_t size);

} // namespace zebrec
