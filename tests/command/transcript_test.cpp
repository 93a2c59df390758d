// Plays the transcripts: each run again, with all that it prints, logs and sends.
#include <algorithm>
#include <filesystem>
#include <span>
#include <sstream>
#include <utility>

#include <nlohmann/json.hpp>

#include "tests/command/transcript.h"
#include "tests/support/expected.h"
#include "tests/support/log_file.h"
#include "tests/support/operation_test.h"
#include "tests/support/paths.h"

namespace zebtest {
namespace {

using Lines = std::vector<std::string>;

std::string joined(const Lines& lines) {
    std::string text;
    for (const auto& line : lines)
        text += line + "\n";
    return text;
}

/// Each line behind the mark, control characters made visible; a last one without a newline behind "|=".
Lines shown(const std::string& mark, std::string_view text) {
    Lines lines;
    while (!text.empty()) {
        const std::size_t end = text.find('\n');
        lines.push_back((end == text.npos ? mark + "= " : mark + " ") + visible(text.substr(0, end)));
        text.remove_prefix(end == text.npos ? text.size() : end + 1);
    }
    return lines;
}

/// As the log shows what was printed: on one line.
std::string onOneLine(std::span<const std::string> printed) {
    std::string text;
    for (const auto& line : printed)
        text += (text.empty() ? "" : " ") + line.substr(2);
    text.erase(text.find_last_not_of(' ') + 1);
    return masked(text, {{"\\^M", " "}});
}

/// How many of the printed lines make up the record; 0 when they do not.
std::size_t linesOf(const LogRecord& record, std::span<const std::string> printed) {
    constexpr std::size_t kLongest = 4;
    for (std::size_t count = std::min(kLongest, printed.size()); count > 0; --count)
        if (printed[count - 1].starts_with("| ") && onOneLine(printed.first(count)) == record.message)
            return count;
    return 0;
}

/// What was printed and what was logged, in one; what was both stands there once.
std::string shownOutput(const Lines& printed, const std::vector<LogRecord>& records) {
    Lines lines;
    std::span<const std::string> left(printed);
    for (const auto& record : records) {
        const std::string text = (record.source.empty() ? "" : record.source + ": ") + record.message;
        std::size_t before = 0;
        while (before < left.size() && linesOf(record, left.subspan(before)) == 0)
            ++before;
        if (before == left.size()) {
            lines.push_back("~ " + text);
            continue;
        }
        const std::size_t count = linesOf(record, left.subspan(before));
        lines.insert(lines.end(), left.begin(), left.begin() + static_cast<std::ptrdiff_t>(before));
        left = left.subspan(before);
        lines.push_back("|~ " + text.substr(0, text.size() - record.message.size()) + left.front().substr(2));
        for (const auto& line : left.subspan(1, count - 1))
            lines.push_back("|+" + line.substr(1));
        left = left.subspan(count);
    }
    lines.insert(lines.end(), left.begin(), left.end());
    return joined(lines);
}

/// The requests as lines; those of a whole snapshot are one, and so are equal ones in a row.
std::string shownRequests(Lines requests, const Lines& snapshot) {
    for (auto from = requests.begin(); !snapshot.empty();) {
        const auto found = std::search(from, requests.end(), snapshot.begin(), snapshot.end());
        if (found == requests.end())
            break;
        *found = "the snapshot once more";
        from = requests.erase(found + 1, found + static_cast<std::ptrdiff_t>(snapshot.size()));
    }
    std::string lines;
    for (auto at = requests.begin(); at != requests.end();) {
        const auto other = std::find_if(at, requests.end(), [&](const auto& line) { return line != *at; });
        lines += "> " + *at + (other - at > 1 ? " (" + std::to_string(other - at) + " times)" : "") + "\n";
        at = other;
    }
    return lines;
}

/// Takes the lines off the front for which that holds.
template <class Holds>
Lines takeWhile(std::span<const std::string>& lines, Holds holds) {
    const auto end = std::ranges::find_if_not(lines, holds);
    const Lines taken(lines.begin(), end);
    lines = lines.subspan(taken.size());
    return taken;
}

/// A text as a transcript writes it.
std::string unescaped(const std::string& text) {
    return masked(text, {{"\\\\r", "\r"}, {"\\\\t", "\t"}});
}

class TranscriptTest : public OperationTest, public testing::WithParamInterface<Transcript> {
  protected:
    /// Plays the lines and returns them with the results as they are.
    Lines play(const Lines& lines) {
        played_.clear();
        for (std::span<const std::string> left(lines); !left.empty();) {
            const std::string line = left.front();
            left = left.subspan(1);
            played_.push_back(line);
            const std::size_t blank = std::min(line.find(' '), line.size());
            step(line, line.substr(0, blank), line.substr(std::min(blank + 1, line.size())), left);
        }
        return played_;
    }

  private:
    void step(const std::string& line, const std::string& word, const std::string& rest,
              std::span<const std::string>& left) {
        if (word == "$")
            compare(rest, joined(takeWhile(left, isResult)));
        else if (word == "refused")
            refuse(rest);
        else if (word == "scenario" && rest.empty())
            hardware_ = joined(keep(takeWhile(left, [](const auto& more) { return !more.empty(); })));
        else if (word == "scenario")
            hardware_ = readFile(std::filesystem::path(paths::scenarioDir) / (rest + ".json"));
        else if (word == "state")
            startState();
        else if (word == "file")
            placeFile(rest, keep(takeWhile(left, [](const auto& more) { return more.starts_with('+'); })));
        else if (word == "set")
            changes_.push_back(rest);
        else if (word == "fault")
            faults_ += (faults_.empty() ? "" : ", ") + rest;
        else if (word == "<" || word == "<<")
            typed_ += unescaped(rest) + (word == "<" ? "\n" : "");
        else if (!line.empty() && !line.starts_with('#'))
            ADD_FAILURE() << "not understood: " << line;
    }

    const Lines& keep(const Lines& lines) {
        played_.insert(played_.end(), lines.begin(), lines.end());
        return lines;
    }

    void startState() {
        std::filesystem::remove(state());
        keepsState_ = true;
    }

    void placeFile(const std::string& name, const Lines& lines) {
        std::filesystem::remove(box.zeb() / name);
        std::string text;
        for (const auto& line : lines)
            text += line.starts_with("++") ? unescaped(line.substr(std::min<std::size_t>(3, line.size())))
                                           : unescaped(line.substr(std::min<std::size_t>(2, line.size()))) + "\n";
        if (!lines.empty())
            writeFile(box.zeb() / name, text);
    }

    std::filesystem::path state() const { return box.root() / "state.json"; }

    /// The hardware of the next run.
    std::string scenario() const {
        if (changes_.empty())
            return hardware_;
        auto json = nlohmann::json::parse(hardware_);
        for (const auto& change : changes_) {
            const std::size_t blank = change.find(' ');
            json[nlohmann::json::json_pointer(change.substr(0, blank))] =
                nlohmann::json::parse(change.substr(blank + 1));
        }
        return json.dump();
    }

    /// All that comes of a run.
    std::string run(const std::string& args) {
        auto options = optionsFor(scenario(), args);
        options.input = Input::kPipe;
        options.inputText = std::exchange(typed_, "");
        if (keepsState_) {
            options.env["ZEBSIM_STATE"] = state();
            options.env["ZEBSIM_SPEED"] = "0";
        }
        const auto snapshot = snapshotOf(options);
        options.env["ZEBSIM_FAULTS"] = "[" + std::exchange(faults_, "") + "]";
        changes_.clear();
        std::filesystem::remove(box.log());
        const auto result = box.run(options);
        std::string text = shownOutput(shown("|", result.out), loggedRecords());
        if (result.exitStatus != 0)
            text += "exit " + std::to_string(result.exitStatus) + "\n";
        text += joined(shown("!", result.err));
        for (const auto& datagram : result.syslog)
            text += "@ " +
                    masked(datagram, {{">[A-Z][a-z]{2} [ \\d]\\d [\\d:]{8} ", ">WHEN "},
                                      {"\\[\\d+\\]", "[PID]"},
                                      {"\\d{4}/\\d\\d/\\d\\d [\\d:]{8}", "TIME"}}) +
                    "\n";
        return text + shownRequests(requestsBehind(snapshot.size(), result.trace), snapshot);
    }

    void compare(const std::string& args, const std::string& wanted) {
        const std::string got = run(args);
        EXPECT_TRUE(sameText(got, wanted)) << "of the results of " << args;
        std::istringstream results(got);
        for (std::string line; std::getline(results, line);)
            played_.push_back(line);
    }

    void refuse(const std::string& row) {
        const std::size_t arrow = row.rfind(" -> ");
        const std::string message = "Error - Invalid input at or near token " + row.substr(arrow + 4) + ".\n";
        const std::string got = masked(run(row.substr(0, arrow)), {{"^\\|~ \\w+: ", "|~ "}});
        EXPECT_TRUE(sameText(got, "|~ " + message)) << row;
    }

    Lines played_;
    std::string hardware_; ///< empty: the built-in scenario
    bool keepsState_ = false;
    Lines changes_;
    std::string faults_;
    std::string typed_;
};

TEST_P(TranscriptTest, ComesOutAsKept) {
    play(GetParam().common);
    const Lines played = play(GetParam().lines);
    if (const char* update = std::getenv("ZEB_UPDATE_EXPECTED"); update != nullptr && std::string_view(update) == "1") {
        rewriteTranscript(GetParam(), played);
        ADD_FAILURE() << GetParam().file << ".txt rewritten";
    }
}

INSTANTIATE_TEST_SUITE_P(Kept, TranscriptTest, testing::ValuesIn(readTranscripts()), [](const auto& test) {
    return masked(test.param.file + "_" + test.param.name, {{"[^A-Za-z0-9]+", "_"}});
});

} // namespace
} // namespace zebtest
