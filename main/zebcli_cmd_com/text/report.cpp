#include "main/zebcli_cmd_com/text/report.h"

#include <algorithm>
#include <charconv>
#include <cstdio>
#include <cstring>

namespace {

constexpr std::string_view kLineEnd = "\r\n";

/// The digits of a number.
class Digits {
  public:
    template <class Number>
    explicit Digits(Number number) : end_(std::to_chars(std::begin(text_), std::end(text_), number).ptr) {}
    operator std::string_view() const { return {text_, static_cast<std::size_t>(end_ - text_)}; }

  private:
    char text_[16]{};
    const char* end_;
};

} // namespace

void Report::controller(int number) {
    add("RAID Controller: %d\r\n\r\n", number);
}

void Report::heading(std::string_view title) {
    put("### ");
    put(title);
    put(" ###\r\n");
}

void Report::field(std::string_view label, const char* format, ...) {
    putLabel(label, kColumn);
    va_list args;
    va_start(args, format);
    putFormatted(format, args);
    va_end(args);
    put(kLineEnd);
}

void Report::fieldAt(Column column, std::string_view label, const char* format, ...) {
    putLabel(label, column);
    va_list args;
    va_start(args, format);
    putFormatted(format, args);
    va_end(args);
    put(kLineEnd);
}

void Report::label(std::string_view text) {
    putLabel(text, kColumn);
}

void Report::add(const char* format, ...) {
    va_list args;
    va_start(args, format);
    putFormatted(format, args);
    va_end(args);
}

void Report::gap() {
    put(kLineEnd);
}

void Report::put(std::string_view text) {
    if (text.size() > kRoom - length_)
        makeRoom();
    const std::size_t taken = std::min(text.size(), kRoom - length_);
    std::memcpy(text_.data() + length_, text.data(), taken);
    length_ += taken;
}

void Report::putLabel(std::string_view text, Column column) {
    static constexpr std::string_view kFill = "                                        : ";
    static constexpr std::size_t kColon = 2; // the last two of them
    put(text);
    put(kFill.substr(kFill.size() - kColon - (column - std::min<std::size_t>(column, text.size()))));
}

/// Nearly all values are texts and whole numbers; these are written without the C library's formatter, which took half
/// of a report's time. It gets what begins with another conversion.
void Report::putFormatted(const char* format, va_list args) {
    for (std::string_view rest(format);;) {
        const std::size_t at = rest.find('%');
        put(rest.substr(0, at));
        if (at == rest.npos)
            return;
        rest.remove_prefix(at);
        switch (rest.size() > 1 ? rest[1] : '\0') {
        case 's':
            put(va_arg(args, const char*));
            break;
        case 'd':
            put(Digits(va_arg(args, int)));
            break;
        case 'u':
            put(Digits(va_arg(args, unsigned)));
            break;
        case '%':
            put("%");
            break;
        default:
            putByFormatter(rest.data(), args);
            return;
        }
        rest.remove_prefix(2);
    }
}

void Report::putByFormatter(const char* format, va_list args) {
    va_list again;
    va_copy(again, args);
    if (!tryFormatted(format, args, false)) {
        makeRoom();
        tryFormatted(format, again, true);
    }
    va_end(again);
}

/// False, with nothing appended, when the text does not fit and must not be cut.
bool Report::tryFormatted(const char* format, va_list args, bool cut) {
    const std::size_t room = kRoom - length_;
    const int formatted = std::vsnprintf(text_.data() + length_, room + 1, format, args);
    const auto length = static_cast<std::size_t>(std::max(formatted, 0));
    if (length > room && !cut)
        return false;
    length_ += std::min(length, room);
    return true;
}

/// Sends out what is there. A "%" at its end stays when it may be the first of a pair, which is printed as one.
void Report::makeRoom() {
    const std::string_view text(text_.data(), length_);
    const std::size_t percents = text.size() - (text.find_last_not_of('%') + 1);
    length_ -= percents % 2;
    emitPiece();
    if (percents % 2 != 0)
        text_[length_++] = '%';
}

/// Prints what is there as a message is printed, but without a newline, and clears it.
void Report::emitPiece() {
    char printed[kMessageSize];
    text_[length_] = '\0';
    const std::size_t length = expandFormat(text_.data(), printed, sizeof printed);
    std::fwrite(printed, 1, length, stdout);
    length_ = 0;
}

void Report::emit() {
    if (length_ == 0)
        return;
    text_[length_++] = '\n';
    emitPiece();
}

void Report::emitPlain() {
    std::fwrite(text_.data(), 1, length_, stdout);
    length_ = 0;
}
