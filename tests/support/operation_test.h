// Runs of the tool on hardware that a scenario describes, and what they log and send behind the snapshot.
#pragma once

#include <cstdint>
#include <string>
#include <string_view>
#include <vector>

#include "tests/support/log_file.h"
#include "tests/support/request_trace.h"
#include "tests/support/sandbox.h"

namespace zebtest {

/// One request with every field of its header that is not zero, what goes out with it, and a status other than 0:
/// "3 02/0a ref=0011000f -> 0x1e". A record that goes out shows as its fields, a block that is kept by hand as its
/// name.
std::string requestLine(const TracedRequest& request);

class OperationTest : public SandboxTest {
  protected:
    /// A run with its arguments, separated by blanks, on that hardware; empty: the built-in one.
    RunOptions optionsFor(const std::string& scenario, const std::string& args);
    /// The requests of the snapshot that such a run begins with, as lines.
    static std::vector<std::string> snapshotOf(RunOptions options);
    /// The requests behind the opening of the library and that many more, and before its closing.
    static std::vector<std::string> requestsBehind(std::size_t count, const std::string& trace);
    /// Those between snapshot and closing, each with a newline.
    std::string requestsAfterSnapshot(const std::string& scenario, const std::string& trace);

    /// What the next run logged, the command line and the entry marks of functions left out.
    std::vector<LogRecord> loggedRecords() const;
    std::vector<std::string> loggedMessages() const;
};

inline std::string number(unsigned value) {
    return std::to_string(value);
}
std::vector<std::string> words(const std::string& text);
/// The text as many times.
std::string repeated(std::string_view text, unsigned times);

} // namespace zebtest
