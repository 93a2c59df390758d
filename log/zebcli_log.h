// What the tool tells the operator and what it leaves in the command log.
#pragma once

#include <cstddef>

/// Where a message goes.
enum LogLevel : unsigned char {
    kPrint = 0, ///< standard output
    kPrintAndLog = 1, ///< standard output and the command log
    kNowhere = 2,
    kLogOnly = 3,
};

/// The tag of a trace record that tells of a failure.
inline constexpr char kTraceError[] = "!ERR ";
inline constexpr char kTracePlain[] = "";

inline constexpr std::size_t kMessageSize = 10000;
inline constexpr std::size_t kTraceSize = 150;

/// Formats a message (cut to 10000 bytes), appends a newline, and prints and logs it as the level says. The printed
/// text passes through expandFormat. Returns the result of the log write where one was made, else 1.
[[gnu::format(printf, 4, 5)]] int CliLogging(unsigned char level, const char* sourceFile, int line, const char* format,
                                             ...);

/// Logs the whole command line, the program's name included, each word followed by a blank.
void HistoryLog(int argc, char** argv);

/// Logs the prefix and the formatted text (cut to 150 bytes). Nothing is printed.
[[gnu::format(printf, 4, 5)]] int Utillogging(const char* sourceFile, int line, const char* prefix, const char* format,
                                              ...);

/// The same, followed by a hex dump of the data.
[[gnu::format(printf, 6, 7)]] int Utillogging_dmp(const char* sourceFile, int line, const char* prefix,
                                                  const void* data, std::size_t dataLen, const char* format, ...);

/// Says on standard error how many records the command log lost since it was opened, and why; nothing when it lost
/// none.
void sayLostRecords();

/// Writes text as a format string without arguments prints: "%%" becomes "%"; any other conversion has no argument to
/// take and stands as it is. Writes at most size - 1 characters and a NUL; returns the number of characters written.
std::size_t expandFormat(const char* text, char* out, std::size_t size);
