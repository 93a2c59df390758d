#include "main/zebcli_cmd_com/input/dialogue.h"

#include "main/terminal.h"

#include <algorithm>
#include <cerrno>
#include <cstdio>
#include <poll.h>
#include <unistd.h>

namespace {

using std::chrono::milliseconds;

constexpr milliseconds kFirstPause{100};
constexpr milliseconds kLongestPause{60000};
constexpr unsigned kEvenPauses = 20;
constexpr unsigned kLongestLine = 1U << 20U;
constexpr std::size_t kNumberDigits = 3;
constexpr unsigned kHighestNumber = 255;

/// The next byte of standard input, waited for even where another program left it in a mode that does not wait.
int nextByte() {
    while (true) {
        const int c = std::fgetc(stdin);
        if (c != EOF || std::feof(stdin) != 0 || errno != EAGAIN)
            return c;
        std::clearerr(stdin);
        pollfd input{STDIN_FILENO, POLLIN, 0};
        poll(&input, 1, -1);
    }
}

/// Reads a line; false when there is none, or none that ends.
bool readLine(std::span<char, kAnswerSize> line) {
    std::size_t length = 0;
    unsigned dropped = 0;
    for (int c = 0; c != '\n' && dropped < kLongestLine;) {
        c = nextByte();
        if (c == EOF)
            break;
        if (length < line.size() - 1)
            line[length++] = static_cast<char>(c);
        else
            ++dropped;
    }
    line[length] = '\0';
    return length > 0 && dropped < kLongestLine;
}

/// A number of one to three digits without a leading zero.
std::optional<unsigned char> numberIn(std::string_view text) {
    if (text.empty() || text.size() > kNumberDigits || (text.size() > 1 && text.front() == '0'))
        return std::nullopt;
    unsigned number = 0;
    for (const char c : text) {
        if (c < '0' || c > '9')
            return std::nullopt;
        number = number * 10 + static_cast<unsigned>(c - '0');
    }
    return number <= kHighestNumber ? std::optional(static_cast<unsigned char>(number)) : std::nullopt;
}

bool contains(std::span<const unsigned char> numbers, unsigned char number) {
    return std::find(numbers.begin(), numbers.end(), number) != numbers.end();
}

std::optional<LdList> ldsIn(std::string_view text, const unsigned char* allowed) {
    LdList list;
    list.fill(kNoTarget);
    for (std::size_t stored = 0;; ++stored) {
        const std::string_view item = text.substr(0, text.find(','));
        const auto number = numberIn(item);
        if (!number || *number >= list.size() || contains(list, *number))
            return std::nullopt;
        if (allowed != nullptr && !contains({allowed, list.size()}, *number))
            return std::nullopt;
        list[stored] = *number; // there is room: no number stands twice
        if (item.size() == text.size())
            return list;
        text.remove_prefix(item.size() + 1);
    }
}

bool quitsInFront(std::string_view text) {
    return text.size() <= kNumberDigits && !text.empty() && (text.front() == 'Q' || text.front() == 'q');
}

bool quitsExactly(std::string_view text) {
    return text == "Q" || text == "q";
}

/// Prints the prompt until take makes something of the answer; nothing when the operator quits.
template <class Take>
auto askUntil(const char* prompt, bool (*quits)(std::string_view), AtEndOfInput atEnd, Take take)
    -> decltype(take(std::string_view())) {
    Answer answer;
    while (true) {
        std::fputs(prompt, stdout);
        answer.read();
        const std::string_view text = answer.text();
        if (quits(text) || (answer.atEnd() && atEnd == AtEndOfInput::Quits))
            return std::nullopt;
        if (auto taken = take(text))
            return taken;
        if (!answer.seen())
            return std::nullopt;
        if (!answer.atEnd())
            std::printf("\"%.*s\" is invalid.\n", static_cast<int>(text.size()), text.data());
        answer.pauseAtEnd();
    }
}

} // namespace

void Answer::read() {
    seen_ = std::fflush(stdout) == 0 && std::ferror(stdout) == 0;
    bool got = false;
    {
        const EchoedInput echo;
        got = readLine(text_);
    }
    if (!got) {
        text_.front() = '\0';
        std::clearerr(stdin);
    }
    atEnd_ = !got;
}

std::string_view Answer::text() const {
    const std::string_view all(line());
    return all.substr(0, all.find_first_of("\r\n"));
}

void Answer::pauseAtEnd() const {
    static unsigned ends = 0;
    ends = atEnd_ ? ends + 1 : 0;
    if (atEnd_)
        usleep(static_cast<useconds_t>(std::chrono::microseconds(endOfInputPause(ends)).count()));
}

milliseconds endOfInputPause(unsigned ends) {
    milliseconds pause = kFirstPause;
    for (unsigned i = kEvenPauses; i < ends && pause < kLongestPause; ++i)
        pause *= 2;
    return std::min(pause, kLongestPause);
}

std::optional<unsigned char> chooseNumber(const char* prompt, std::span<const unsigned char> offered,
                                          AtEndOfInput atEnd) {
    return askUntil(prompt, quitsInFront, atEnd, [&](std::string_view text) {
        const auto number = numberIn(text);
        return number && contains(offered, *number) ? number : std::nullopt;
    });
}

std::optional<unsigned char> askMenuNumber(unsigned char rows) {
    return askUntil("Please input number or Q :", quitsExactly, AtEndOfInput::Quits, [&](std::string_view text) {
        const auto number = numberIn(text);
        return number && (rows == 0 || (*number >= 1 && *number <= rows)) ? number : std::nullopt;
    });
}

std::optional<LdList> askLdList(const unsigned char* allowed) {
    return askUntil("Please input LD number or Q :", quitsExactly, AtEndOfInput::Quits,
                    [&](std::string_view text) { return ldsIn(text, allowed); });
}
