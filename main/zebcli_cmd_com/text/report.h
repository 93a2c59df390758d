// Reports: lines gathered in one buffer and printed in blocks.
#pragma once

#include "log/zebcli_log.h"

#include <array>
#include <cstdarg>
#include <cstddef>

/// The text of a block. A line that does not fit any more makes what is there go out first, without a newline of its
/// own, so that none is lost and no empty line comes in.
class Report {
  public:
    /// Appends one formatted line (cut to the buffer's size).
    [[gnu::format(printf, 2, 3)]] void add(const char* format, ...);

    /// Prints what is there through CliLogging, which adds a newline, and clears it. Prints nothing when there is
    /// nothing.
    void emit();

    /// Prints what is there as it stands, past CliLogging, and clears it.
    void emitPlain();

  private:
    /// A block, the newline that is added to it and the NUL fill a message exactly.
    static constexpr std::size_t kRoom = kMessageSize - 2;

    /// Prints what is there as emit() does, but without the newline behind a block, and clears it.
    void emitPiece();

    /// False, with nothing appended, when the line has to wait for room.
    [[gnu::format(printf, 2, 0)]] bool append(const char* format, va_list args);

    std::size_t length_ = 0;
    std::array<char, kMessageSize> text_;
};
