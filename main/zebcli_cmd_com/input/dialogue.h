// Answers to questions: how a line is read, and the prompts that take a number, a list of numbers or one out of a list.
#pragma once

#include "main/zebcli_cmd_com/input/targets.h"

#include <array>
#include <chrono>
#include <cstddef>
#include <optional>
#include <span>
#include <string_view>

/// The longest answer that is read at once, its newline and NUL included.
inline constexpr std::size_t kAnswerSize = 65536;

/// One line from standard input.
class Answer {
  public:
    /// Shows what was printed and reads a line, with echo on meanwhile. Of a line that is too long the rest is dropped,
    /// so that its end is not taken for the answer to the question asked again.
    void read();

    /// The line with its newline, empty at the end of the input.
    const char* line() const { return text_.data(); }
    /// The line up to its first "\r" or "\n".
    std::string_view text() const;
    /// Not one character could be read, or a line without an end was given up. More may come from a terminal.
    bool atEnd() const { return atEnd_; }
    /// False when nobody reads the questions any more, so that asking again is in vain.
    bool seen() const { return seen_; }
    /// Where the input is at its end, waits so that asking again cannot spin a processor.
    void pauseAtEnd() const;

  private:
    bool atEnd_ = false;
    bool seen_ = true;
    std::array<char, kAnswerSize> text_{};
};

/// How long to wait before a question is asked again when the input was at its end that many times in a row.
std::chrono::milliseconds endOfInputPause(unsigned ends);

/// What the end of the input means to a prompt.
enum class AtEndOfInput {
    AsksAgain, ///< after a pause
    Quits,
};

/// Prints the prompt until one of the offered numbers is typed, in digits without a leading zero; any other text is
/// said to be invalid. Nothing when the operator quits, with a Q or q in front, or when asking again is in vain.
std::optional<unsigned char> chooseNumber(const char* prompt, std::span<const unsigned char> offered,
                                          AtEndOfInput atEnd);

/// Prints the prompt of a menu until a number from 1 to rows is typed (any up to 255 when rows is 0). Nothing when the
/// operator quits, with exactly Q or q, or at the end of the input.
std::optional<unsigned char> askMenuNumber(unsigned char rows);

/// Prints the prompt for LDs until a list of numbers, joined by ",", is typed: none twice and each among the allowed
/// ones (all 64 when there is no such list). Ends as askMenuNumber does.
std::optional<LdList> askLdList(const unsigned char* allowed);
