// The command log over a file that may hold anything: where records go, held against a plain model of the ring.
//
// Input: lines of the ring, bytes beyond them in the budget, number of records, bytes of data with each, how often the
// rest is repeated to make the file, then the rest. Its first line is also the message of the records.
#include "fuzz/support.h"
#include "log/log_lines.h"
#include "log/raidctl.h"

#include <algorithm>
#include <cctype>
#include <string>
#include <sys/mman.h>
#include <unistd.h>

namespace {

constexpr std::size_t kLargestFile = 200000; // several times what the log reads at once
constexpr char kAnyPrintable = '\1';

/// The ring as one string: what the file must hold. The time in a record is left open.
class RingModel {
  public:
    RingModel(std::string file, std::size_t lines) : file_(std::move(file)), lines_(lines) {}

    /// Finds the marker as a run does with its first record.
    void position() {
        std::size_t begin = 0;
        for (line_ = 1; line_ <= lines_ && begin < file_.size(); ++line_) {
            const std::string_view line = std::string_view(file_).substr(begin, kLogLineSize);
            if (line.starts_with(kLogEndMark)) {
                begin_ = begin;
                return;
            }
            begin += std::min(line.find('\n'), line.size() - 1) + 1;
        }
        line_ = 1;
        begin_ = 0;
    }

    void put(std::string_view text) {
        const std::size_t begin = begin_;
        const bool wraps = ++line_ > lines_;
        line_ = wraps ? 1 : line_;
        begin_ = wraps ? 0 : begin + kLogLineSize;
        write(begin_, kLogEndMark);
        if (begin != begin_) // a ring of one line holds nothing but the marker
            write(begin, text);
    }

    bool matches(const std::string& file) const {
        return std::equal(file.begin(), file.end(), file_.begin(), file_.end(), [](char got, char wanted) {
            return got == wanted || (wanted == kAnyPrintable && std::isprint(static_cast<unsigned char>(got)) != 0);
        });
    }

  private:
    void write(std::size_t begin, std::string_view text) {
        std::string line(text.substr(0, kLogTextSize));
        line.resize(kLogTextSize, ' ');
        file_.resize(std::max(file_.size(), begin + kLogLineSize));
        file_.replace(begin, kLogLineSize, line + '\n');
    }

    std::string file_;
    std::size_t lines_;
    std::size_t line_ = 1;
    std::size_t begin_ = 0;
};

std::string expectedRecord(std::string message) {
    const LogLine prefix = recordLine(nullptr, 0, nullptr);
    const std::size_t length = std::string_view(prefix.data(), prefix.size()).find_last_not_of(' ') + 1;
    std::replace_if(
        message.begin(), message.end(), [](unsigned char c) { return std::iscntrl(c) != 0; }, ' ');
    return "[" + std::string(length - 1, kAnyPrintable) + " source(7) " + message;
}

std::string contentOf(int fd) {
    std::string content(static_cast<std::size_t>(lseek(fd, 0, SEEK_END)), '\0');
    fuzz::require(pread(fd, content.data(), content.size(), 0) == static_cast<ssize_t>(content.size()), "a full read");
    return content;
}

/// One run of the tool: opens the log, writes records with data, closes it.
void writeRecords(int fd, unsigned budget, unsigned records, const std::string& message, fuzz::Bytes data,
                  RingModel& model) {
    const std::string path = "/proc/self/fd/" + std::to_string(fd);
    fuzz::require(initLog(path.c_str(), budget) == 1, "the log opens");
    const bool emptyAtFirst = lseek(fd, 0, SEEK_END) == 0;
    if (!emptyAtFirst && records > 0)
        model.position();
    for (unsigned i = 0; i < records; ++i) {
        const auto length = static_cast<unsigned>(data.size());
        fuzz::require(dumpLog("folder/source", 7, message.c_str(), data.data(), length) == 1, "a record is written");
        model.put(expectedRecord(message));
        if (!data.empty())
            dumpLines(data, [&](const LogLine& line) {
                model.put({line.data(), line.size()});
                return true;
            });
    }
    finContData();
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    fuzz::Input input(data, size);
    const unsigned lines = input.byte();
    const unsigned budget = lines * static_cast<unsigned>(kLogLineSize) + input.byte() % kLogLineSize;
    const unsigned records = input.byte() % 8;
    const fuzz::Bytes dump = fuzz::Input(data, size).take(input.byte());
    const unsigned repeats = 1 + input.byte();
    const std::string rest = fuzz::textOf(input.rest());
    std::string content;
    for (unsigned i = 0; i < repeats && content.size() + rest.size() <= kLargestFile; ++i)
        content += rest;
    const std::string message(rest.substr(0, rest.find('\n')).c_str());

    static const int fd = memfd_create("log", MFD_CLOEXEC);
    fuzz::require(ftruncate(fd, 0) == 0 && pwrite(fd, content.data(), content.size(), 0) >= 0, "the file is prepared");
    RingModel model(content, lines);
    writeRecords(fd, budget, records, message, dump, model);
    fuzz::require(model.matches(contentOf(fd)), "the first run's records stand where the marker was");
    writeRecords(fd, budget, 1, message, dump, model);
    fuzz::require(model.matches(contentOf(fd)), "the second run goes on where the first stopped");
    return 0;
}
