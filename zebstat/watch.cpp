// Background work as progress bars.
#include "facts/spoken.h"
#include "facts/text.h"
#include "zebstat/output.h"
#include "zebstat/run.h"
#include "zebstat/terminal.h"
#include "zebstat/work.h"

#include <algorithm>

namespace zebstat {

namespace {

using facts::Collection;

constexpr char kIdle[] = "no background work is under way";

/// The text cut to so many characters. It is UTF-8 without control characters.
std::string cut(const std::string& text, std::size_t columns) {
    std::size_t characters = 0;
    for (std::size_t i = 0; i < text.size(); ++i) {
        const bool begins = (static_cast<unsigned char>(text[i]) & 0xC0U) != 0x80;
        if (begins && characters++ == columns)
            return text.substr(0, i);
    }
    return text;
}

std::string padded(const std::string& text, std::size_t columns) {
    std::size_t characters = 0;
    for (const char c : text)
        characters += (static_cast<unsigned char>(c) & 0xC0U) != 0x80 ? 1 : 0;
    return text + std::string(columns > characters ? columns - characters : 0, ' ');
}

std::string operationText(const facts::Operation& operation) {
    std::string text(operation.type);
    std::ranges::replace(text, '_', ' ');
    return text;
}

/// The same where there is little room.
std::string shortText(const facts::Operation& operation) {
    return operation.type == "background_initialization" ? "background init" : operationText(operation);
}

std::string leftText(const facts::Operation& operation) {
    const auto left = operation.remainingSeconds();
    return left ? facts::spokenDuration(*left) + " left" : "";
}

std::string percentText(const facts::Operation& operation) {
    const std::string number = std::to_string(operation.percent());
    return std::string(3 - number.size(), ' ') + number + " %";
}

/// "0  PD252:1            rebuild           [#####......]  37 %  about 2 h left", as wide as the terminal. Where that
/// is narrow, the bar is left out, then the kind of work and the end of the name.
std::string barLine(const Work& work, std::size_t columns) {
    constexpr std::size_t kWorkWidth = 18;
    constexpr std::size_t kTailWidth = 26; // percent and time left: " 99 %  under a minute left"
    constexpr std::size_t kLeastHead = 12;
    constexpr std::size_t kLeastBar = 10;
    constexpr std::size_t kMostBar = 60;
    const std::size_t nameWidth = std::clamp<std::size_t>(columns / 4, 20, 32);
    const std::size_t beforeTail = std::max(columns, kTailWidth) - kTailWidth;
    const std::size_t headWidth = std::clamp(beforeTail, kLeastHead, nameWidth + kWorkWidth);
    const std::string name = facts::printable(std::to_string(work.object.controller) + "  " + work.name);
    const std::string whole = padded(cut(name, nameWidth - 1), nameWidth) + shortText(work.operation);
    const std::string head = padded(cut(whole, headWidth - 1), headWidth);
    const std::size_t room = std::max(beforeTail, headWidth) - headWidth;
    std::string bar;
    if (room >= kLeastBar) {
        const std::size_t width = std::min(room, kMostBar) - 3;
        const auto filled = static_cast<std::size_t>(work.operation.ratio() * static_cast<double>(width));
        bar = "[" + std::string(filled, '#') + std::string(width - filled, '.') + "] ";
    }
    return cut(head + bar + percentText(work.operation) + "  " + leftText(work.operation), columns);
}

/// What is drawn on a terminal: a heading and a bar for each work, as many as there is room for.
std::vector<std::string> screen(const Collection& collection, const std::vector<Work>& works, Terminal::Size size) {
    --size.columns; // a line that fills the last column would begin the next one
    std::vector<std::string> lines{
        cut(facts::printable(collection.hostName) + "  " + collection.hostTime + "  (q ends)", size.columns)};
    if (works.empty())
        lines.push_back(cut(kIdle, size.columns));
    const std::size_t room = std::max<std::size_t>(size.rows, 4) - 2; // the heading, and the line of the cursor
    const std::size_t shown = works.size() <= room ? works.size() : room - 1;
    for (std::size_t i = 0; i < shown; ++i)
        lines.push_back(barLine(works[i], size.columns));
    if (shown < works.size())
        lines.push_back(cut("and " + std::to_string(works.size() - shown) + " more", size.columns));
    if (!collection.complete())
        lines.front() = cut("some requests failed  " + lines.front(), size.columns);
    return lines;
}

/// What is printed where nothing can be drawn again: a line for each work, with the time.
std::string plainLines(const Collection& collection, const std::vector<Work>& works) {
    if (works.empty())
        return collection.hostTime + " " + kIdle + "\n";
    std::string text;
    for (const Work& work : works) {
        text += collection.hostTime + " controller " + std::to_string(work.object.controller) + ": " +
                facts::printable(work.name) + " " + operationText(work.operation) + " " +
                std::to_string(work.operation.percent()) + " %";
        const std::string left = leftText(work.operation);
        text += (left.empty() ? "" : ", " + left) + "\n";
    }
    return text;
}

class Watching {
  public:
    explicit Watching(const Options& options) : options_(options) {}

    int run() {
        while (true) {
            const Collected collected = collectNow(options_, facts::Scope::Everything, Terminal::restore);
            if (!collected.collection) {
                Terminal::restore();
                return untold(options_.command, collected.problem);
            }
            const std::vector<Work> works = workOf(*collected.collection);
            const int status = statusOf(*collected.collection, findingsOf(*collected.collection));
            if (!show(*collected.collection, works))
                return kUntold;
            Terminal::setEndStatus(status);
            const bool done = works.empty() && collected.collection->complete();
            if (options_.once || (options_.untilDone && done) || terminal_.endKeyWithin(options_.interval))
                return status;
        }
    }

  private:
    bool show(const Collection& collection, const std::vector<Work>& works) {
        if (!terminal_.isTerminal())
            return writeOutput(plainLines(collection, works));
        std::string text;
        if (drawn_ != 0)
            text += "\r\033[" + std::to_string(drawn_) + "A"; // up to where the last drawing began
        const std::vector<std::string> lines = screen(collection, works, terminal_.size());
        for (const std::string& line : lines)
            text += line + "\033[K\n";
        text += "\033[J";
        drawn_ = lines.size();
        return writeOutput(text);
    }

    const Options& options_;
    Terminal terminal_;
    std::size_t drawn_ = 0; ///< lines that stand on the terminal
};

} // namespace

int runWatch(const Options& options) {
    return Watching(options).run();
}

} // namespace zebstat
