#include "log/zebcli_log.h"

#include "log/raidctl.h"

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <string_view>

namespace {

constexpr std::size_t kPrefixRoom = 32;

/// Formats into a buffer, cutting what does not fit. Returns the length of the text.
[[gnu::format(printf, 3, 0)]] std::size_t formatInto(char* out, std::size_t size, const char* format, va_list args) {
    const int length = std::vsnprintf(out, size, format, args);
    if (length < 0) {
        out[0] = '\0';
        return 0;
    }
    return std::min(static_cast<std::size_t>(length), size - 1);
}

[[gnu::format(printf, 6, 0)]] int writeTrace(const char* sourceFile, int line, const char* prefix, const void* data,
                                             std::size_t dataLen, const char* format, va_list args) {
    char text[kTraceSize];
    formatInto(text, sizeof text, format, args);
    char message[kTraceSize + kPrefixRoom];
    std::snprintf(message, sizeof message, "%s%s", prefix, text);
    return dumpLog(sourceFile, line, message, static_cast<const unsigned char*>(data),
                   static_cast<unsigned int>(dataLen));
}

} // namespace

std::size_t expandFormat(const char* text, char* out, std::size_t size) {
    std::size_t length = 0;
    for (std::string_view rest(text); !rest.empty() && length + 1 < size;) {
        const std::size_t percent = rest.find("%%");
        const std::size_t run = percent == rest.npos ? rest.size() : percent + 1;
        const std::size_t taken = std::min(run, size - 1 - length);
        std::memcpy(out + length, rest.data(), taken);
        length += taken;
        rest.remove_prefix(percent == rest.npos ? run : run + 1);
    }
    if (size > 0)
        out[length] = '\0';
    return length;
}

int CliLogging(unsigned char level, const char* sourceFile, int line, const char* format, ...) {
    char message[kMessageSize];
    va_list args;
    va_start(args, format);
    const std::size_t length = formatInto(message, sizeof message - 1, format, args);
    va_end(args);
    message[length] = '\n';
    message[length + 1] = '\0';

    if (level == kPrint || level == kPrintAndLog) {
        char printed[kMessageSize];
        const std::size_t printedLength = expandFormat(message, printed, sizeof printed);
        std::fwrite(printed, 1, printedLength, stdout);
    }
    if (level == kPrintAndLog || level == kLogOnly)
        return dumpLog(sourceFile, line, message);
    return 1;
}

void HistoryLog(int argc, char** argv) {
    char text[kMessageSize];
    std::size_t length = 0;
    const auto add = [&](const char* part, std::size_t size) {
        const std::size_t taken = std::min(size, sizeof text - 1 - length);
        std::memcpy(text + length, part, taken);
        length += taken;
    };
    for (int i = 0; i < argc; ++i) {
        add(argv[i], std::strlen(argv[i]));
        add(" ", 1);
    }
    text[length] = '\0';
    dumpLog(nullptr, 0, text);
}

int Utillogging(const char* sourceFile, int line, const char* prefix, const char* format, ...) {
    va_list args;
    va_start(args, format);
    const int result = writeTrace(sourceFile, line, prefix, nullptr, 0, format, args);
    va_end(args);
    return result;
}

int Utillogging_dmp(const char* sourceFile, int line, const char* prefix, const void* data, std::size_t dataLen,
                    const char* format, ...) {
    va_list args;
    va_start(args, format);
    const int result = writeTrace(sourceFile, line, prefix, data, dataLen, format, args);
    va_end(args);
    return result;
}

void sayLostRecords() {
    const LostRecords& lost = lostRecords();
    if (lost.count != 0)
        std::fprintf(stderr, "zebcli: records of the command log that could not be written: %u (%s: %s)\n", lost.count,
                     lost.call, std::strerror(lost.error));
}
