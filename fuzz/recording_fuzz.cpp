// The reader of recordings. What it reads is shown, redacted, and written; what was written reads back the same.
#include "fuzz/support.h"
#include "recorder/recording.h"
#include "recorder/redaction.h"
#include "recorder/show.h"

namespace {

std::string written(const zebrec::Recording& recording) {
    std::string text = zebrec::writeHead(recording.head) + "\n";
    for (const zebrec::Line& line : recording.lines)
        text += zebrec::writeLine(line);
    return text;
}

/// Redaction keeps the size and comes to the same each time.
void redact(const zebrec::Line& line) {
    if (!line.out)
        return;
    const auto request = zebrec::Request::of(line.header, *line.out);
    const zebrec::RedactionKey key{1, 2};
    zebrec::Bytes first = *line.out;
    zebrec::Bytes second = *line.out;
    const bool kept = zebrec::Redaction::replacing(key).apply(request.data(), first);
    fuzz::require(zebrec::Redaction::replacing(key).apply(request.data(), second) == kept && first == second,
                  "an original always becomes the same word");
    zebrec::Redaction::erasing().apply(request.data(), first);
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    std::string reason;
    const auto recording = zebrec::readRecording(fuzz::textOf({data, size}), reason);
    fuzz::require(recording.has_value() == reason.empty(), "a refusal has a reason");
    if (!recording)
        return 0;
    zebrec::showRecording(*recording);
    for (const zebrec::Line& line : recording->lines)
        redact(line);
    const std::string text = written(*recording);
    const auto again = zebrec::readRecording(text, reason);
    fuzz::require(again.has_value(), "a written recording can be read");
    fuzz::require(written(*again) == text, "a written recording reads back the same");
    return 0;
}
