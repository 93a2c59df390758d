// Reports: lines gathered in one buffer and printed in blocks.
#pragma once

#include "log/zebcli_log.h"

#include <array>
#include <cstdarg>
#include <cstddef>
#include <string_view>

/// The text of a block, line by line in the order in which they are printed. Where the colons stand is the report's
/// business; blanks are never counted by hand.
///
/// What does not fit any more makes what is there go out first, without a newline of its own, so that nothing is lost
/// and no empty line comes in.
class Report {
  public:
    /// Where the colon of a field stands, counted from 0.
    enum Column : std::size_t { kColumn = 25, kWideColumn = 30, kWidestColumn = 35 };

    /// "RAID Controller: %d" and an empty line.
    void controller(int number);

    /// "### title ###" on a line of its own.
    void heading(std::string_view title);

    /// The label, filled with blanks up to the column of the colon, the formatted value and a line end.
    [[gnu::format(printf, 3, 4)]] void field(std::string_view label, const char* format, ...);

    /// The same for a group of lines whose colon stands further to the right.
    [[gnu::format(printf, 4, 5)]] void fieldAt(Column column, std::string_view label, const char* format, ...);

    /// The label and its colon alone, for a value with a line end of its own or with none.
    void label(std::string_view text);

    /// Appends formatted text as it stands (cut to the buffer's size), line ends included.
    [[gnu::format(printf, 2, 3)]] void add(const char* format, ...);

    /// An empty line.
    void gap();

    /// Prints what is there as CliLogging prints a message, a newline behind it, and clears it. Prints nothing when
    /// there is nothing.
    void emit();

    /// Prints what is there as it stands, past CliLogging, and clears it.
    void emitPlain();

  private:
    /// A block, the newline that is added to it and the NUL fill a message exactly.
    static constexpr std::size_t kRoom = kMessageSize - 2;

    void put(std::string_view text);
    void putLabel(std::string_view text, Column column);
    [[gnu::format(printf, 2, 0)]] void putFormatted(const char* format, va_list args);
    [[gnu::format(printf, 2, 0)]] void putByFormatter(const char* format, va_list args);
    [[gnu::format(printf, 2, 0)]] bool tryFormatted(const char* format, va_list args, bool cut);
    void makeRoom();
    void emitPiece();

    std::size_t length_ = 0;
    std::array<char, kMessageSize> text_;
};
