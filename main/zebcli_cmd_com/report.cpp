#include "main/zebcli_cmd_com/report.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>

void Report::add(const char* format, ...) {
    std::array<char, kMessageSize> line;
    va_list args;
    va_start(args, format);
    const int formatted = std::vsnprintf(line.data(), line.size(), format, args);
    va_end(args);
    const std::size_t length = std::min(static_cast<std::size_t>(std::max(formatted, 0)), kRoom);
    if (length_ + length > kRoom)
        emit();
    std::memcpy(text_.data() + length_, line.data(), length);
    length_ += length;
    text_[length_] = '\0';
}

void Report::emit() {
    if (length_ > 0)
        CliLogging(kPrint, source_, 0, "%s", text_.data());
    length_ = 0;
    text_[0] = '\0';
}

void Report::emitPlain() {
    std::fwrite(text_.data(), 1, length_, stdout);
    length_ = 0;
    text_[0] = '\0';
}
