// What the fuzz targets share: the input cut into parts, files and operator answers made of bytes, and the check that
// ends a run with a finding. Linking it makes standard output and the system log silent.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

namespace fuzz {

using Bytes = std::span<const std::uint8_t>;

/// The bytes of one run, taken from the front.
class Input {
  public:
    Input(const std::uint8_t* data, std::size_t size) : rest_(data, size) {}

    /// The next byte, 0 when there is none left.
    std::uint8_t byte();

    /// As many bytes as there are, at most count.
    Bytes take(std::size_t count);

    /// Everything up to the next byte of that value, which is taken too, or up to the end.
    Bytes takeUntil(std::uint8_t end);

    Bytes rest() const { return rest_; }

  private:
    Bytes rest_;
};

inline std::string textOf(Bytes bytes) {
    return {bytes.begin(), bytes.end()};
}

/// Ends the run with a finding unless the statement holds.
void require(bool holds, const char* statement);

using File = std::unique_ptr<std::FILE, int (*)(std::FILE*)>;

/// A readable file with these bytes; behind its end stands the tail, again and again. The bytes must outlive the file.
File openBytes(Bytes bytes, std::string_view tail = {});

/// Makes standard input what the operator types: the bytes, the end of the input once, then "no" and "quit" for ever.
/// Holds until the next call.
void typeAnswers(Bytes bytes);

/// A command line cut at its blanks, the program's name in front, as main() gets it. Words are cut to the length that
/// the start-up lets through.
class CommandLine {
  public:
    explicit CommandLine(Bytes text);
    int argc() const { return static_cast<int>(words_.size()); }
    char** argv() { return pointers_.data(); }

  private:
    std::vector<std::string> words_;
    std::vector<char*> pointers_;
};

} // namespace fuzz
