// The command log: a text file of fixed-width lines, used as a ring.
//
// Every line is 199 characters and a newline. The line that begins with "<END>" marks where the next record goes: above
// it stands the newest record, below it, once the file has wrapped, the oldest. The layout stands here and nowhere
// else.
#pragma once

#include <cstddef>

inline constexpr std::size_t kLogLineSize = 200;
inline constexpr std::size_t kLogTextSize = kLogLineSize - 1;
inline constexpr char kLogEndMark[] = "<END>";
inline constexpr char kLogDirectory[] = "/opt/quorvel/zeb/log/";

/// Opens the log, creating it when it is missing; an open one is closed first. A name without "/" lies in kLogDirectory
/// if that exists, else in the working directory. The budget is in bytes; the ring holds budget / 200 lines. Returns 1
/// when the log is open, else 0, with the reason in the library error registry.
int initLog(const char* fileName, unsigned int maxFileSize);

/// Closes the log. Returns 1.
int finContData();

/// The records that could not be written since the log was opened, and why the first of them could not.
struct LostRecords {
    unsigned int count = 0;
    const char* call = ""; ///< that failed
    int error = 0; ///< its errno
};
const LostRecords& lostRecords();

/// Writes one record with the time, the process id, and what is given of source name (its last path component), line
/// and message; then, when data and length are given, a hex dump of the data. All of it stands together, under one
/// lock. Returns 1, or 0 when the log is not open or a file operation failed.
int dumpLog(const char* sourceFile, int line, const char* message, const unsigned char* data = nullptr,
            unsigned int dataLen = 0);
