// The recording: JSON Lines, a head and one line a request. doc/recording_format.md describes it.
#pragma once

#include "recorder/request.h"

#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <unordered_map>
#include <vector>

namespace zebrec {

struct Head {
    std::string tool; ///< name and version of the program that recorded
    std::string library; ///< version of the recorded library; empty when the command did not ask for it
    std::string time; ///< UTC, ISO 8601
    bool redacted = true;
};

/// An answer: its bytes, or the number of the line that holds the same.
struct Answer {
    Bytes bytes;
    std::uint64_t sameAs = 0; ///< line number; 0: none
};

/// One request and what became of it. A controller command has an inner part: the data that its input points to.
struct Line {
    std::uint64_t number = 0; ///< from 1 on
    std::uint64_t microseconds = 0;
    Header header{};
    std::optional<Bytes> out; ///< not set: nothing is sent, or it is not known what
    std::optional<Answer> in; ///< not set: the data is as it was
    std::optional<Bytes> innerOut;
    std::optional<Answer> innerIn;
    std::uint64_t past = 0; ///< bytes behind the declared size up to the last that the library wrote
    std::uint32_t status = 0;
    bool leftOut = false; ///< its bytes are not in the file; the header holds type and code only
};

/// The head line, padded with blanks so that it can be written again in place. Without a newline.
std::string writeHead(const Head& head);
inline constexpr std::size_t kHeadSize = 256; ///< of the head line, the newline included

/// The line of a request, its newline included.
std::string writeLine(const Line& line);

struct Recording {
    Head head;
    std::vector<Line> lines;
    std::unordered_map<std::uint64_t, std::size_t> places; ///< of the lines, by their numbers
    bool cut = false; ///< the last line is not whole and was passed over

    /// What the library answered, whichever line holds it.
    const Bytes* answerOf(const std::optional<Answer>& answer, bool inner) const;
};

/// Reads a recording. On failure returns nothing and says why in `reason` ("line 3: ...").
std::optional<Recording> readRecording(std::string_view text, std::string& reason);

/// The same from a file of at most 1 GB.
std::optional<Recording> readRecordingFile(const std::string& path, std::string& reason);

} // namespace zebrec
