// Writes the line of each request into the recording.
#pragma once

#include "recorder/forward.h"
#include "recorder/recording.h"
#include "recorder/session_page.h"

#include <string>
#include <unordered_map>

namespace zebrec {

class LineWriter {
  public:
    /// The recording is the file of that path, which exists. Nothing is written when it cannot be opened.
    LineWriter(SessionPage& page, const char* path);
    ~LineWriter();
    LineWriter(const LineWriter&) = delete;
    LineWriter& operator=(const LineWriter&) = delete;

    /// Writes the line of a request that is over; it is in the file before this returns.
    void write(const Exchange& exchange, std::uint64_t number, std::optional<unsigned> contNo);

    /// Ends the recording, for the reason of that errno.
    void stop(int why);

  private:
    /// The answers of one kind that stand in the file, by their bytes before redaction.
    using Known = std::unordered_map<std::string, std::uint64_t>;

    bool fill(Line& line, const Exchange& exchange);
    bool fillOut(std::optional<Bytes>& out, Data data, std::span<const std::uint8_t> bytes) const;
    bool fillIn(std::optional<Answer>& in, Data data, std::span<const std::uint8_t> bytes, Known& known,
                std::uint64_t number);
    void append(const std::string& text);

    SessionPage& page_;
    int file_;
    Known known_;
    Known knownInner_;
    std::size_t keptBytes_ = 0;
};

} // namespace zebrec
