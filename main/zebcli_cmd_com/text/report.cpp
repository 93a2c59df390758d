#include "main/zebcli_cmd_com/text/report.h"

#include <algorithm>
#include <cstdio>

bool Report::append(const char* format, va_list args) {
    const std::size_t room = kRoom - length_;
    const int formatted = std::vsnprintf(text_.data() + length_, room + 1, format, args);
    const auto length = static_cast<std::size_t>(std::max(formatted, 0));
    if (length > room && length_ > 0)
        return false;
    length_ += std::min(length, room);
    return true;
}

void Report::add(const char* format, ...) {
    va_list args;
    va_start(args, format);
    const bool fits = append(format, args);
    va_end(args);
    if (fits)
        return;
    emitPiece();
    va_start(args, format);
    append(format, args);
    va_end(args);
}

void Report::emitPiece() {
    char printed[kMessageSize];
    text_[length_] = '\0';
    std::fwrite(printed, 1, expandFormat(text_.data(), printed, sizeof printed), stdout);
    length_ = 0;
}

void Report::emit() {
    if (length_ > 0)
        CliLogging(kPrint, nullptr, 0, "%.*s", static_cast<int>(length_), text_.data());
    length_ = 0;
}

void Report::emitPlain() {
    std::fwrite(text_.data(), 1, length_, stdout);
    length_ = 0;
}
