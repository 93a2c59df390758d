// Reads the command log as a test wants to see it, and damages it as a test wants it damaged.
#pragma once

#include <cstddef>
#include <filesystem>
#include <string>
#include <string_view>
#include <vector>

#include <gtest/gtest.h>

#include "tests/support/child.h"

namespace zebtest {

inline constexpr std::size_t kLogLineBytes = 200;

/// One record: "[time] pid=pid source(line) message" and the lines of its data dump.
struct LogRecord {
    std::string time;
    std::string pid;
    std::string source; ///< empty when the record names none
    unsigned line = 0;
    std::string message; ///< without the padding
    std::vector<std::string> dump;
};

/// A text as the log holds it: padded to 199 characters, with a newline.
std::string logLine(std::string_view text);
/// The line that shows where the next record goes.
std::string logMarker();

class LogFile {
  public:
    explicit LogFile(std::filesystem::path path) : path_(std::move(path)) {}

    /// Whether the file is nothing but whole lines of 200 bytes.
    testing::AssertionResult everyLineExact() const;
    /// The 1-based numbers of the lines that begin with the marker.
    std::vector<std::size_t> markers() const;
    /// All lines from the oldest to the newest (from the first marker on, round the ring), the marker left out.
    std::vector<std::string> lines() const;
    /// The records in the same order; lines before the first whole record are left out.
    std::vector<LogRecord> records() const;
    /// The messages of the records.
    std::vector<std::string> messages() const;
    /// The records as text, one line each and their dumps below, with TIME, PID, LINE and the pointers in request dumps
    /// masked.
    std::string masked() const;

    std::string bytes() const;
    void write(std::string_view bytes) const;
    /// Takes the exclusive lock that writers need, until the returned object is gone.
    [[nodiscard]] Fd holdLock() const;

  private:
    std::vector<std::string> storedLines() const;
    std::filesystem::path path_;
};

} // namespace zebtest
