#include "log/raidctl.h"

#include "log/last_error.h"
#include "log/log_lines.h"

#include <algorithm>
#include <array>
#include <cerrno>
#include <cstdio>
#include <cstring>
#include <fcntl.h>
#include <string_view>
#include <sys/file.h>
#include <sys/stat.h>
#include <unistd.h>

namespace {

constexpr mode_t kLogMode = 0744;
constexpr std::size_t kPathSize = 4096;
constexpr std::size_t kScanBlock = 320 * kLogLineSize;

struct LogState {
    int fd = -1;
    unsigned int budget = 0; // bytes
    unsigned int counter = 0; // line of the marker, from 1; 0: not positioned yet
    off_t position = 0; // byte where that line begins

    unsigned int lineBudget() const { return budget / static_cast<unsigned int>(kLogLineSize); }
    void toTop() {
        counter = 1;
        position = 0;
    }
};

LogState logState;

int systemCallFailed(const char* call) {
    DLLSetLastError(kErrSystemCall, call);
    return 0;
}

/// The exclusive lock on the log file, held for one record with its dump.
class LogLock {
  public:
    explicit LogLock(int fd) : fd_(fd), held_(flock(fd, LOCK_EX) == 0) {}
    ~LogLock() { release(); }
    LogLock(const LogLock&) = delete;
    LogLock& operator=(const LogLock&) = delete;

    bool held() const { return held_; }
    bool release() {
        const bool released = !held_ || flock(fd_, LOCK_UN) == 0;
        held_ = false;
        return released;
    }

  private:
    int fd_;
    bool held_;
};

bool writeLine(const LogLine& line, off_t position) {
    std::array<char, kLogLineSize> bytes{};
    std::copy(line.begin(), line.end(), bytes.begin());
    bytes.back() = '\n';
    std::size_t done = 0;
    while (done < bytes.size()) {
        const ssize_t written =
            pwrite(logState.fd, bytes.data() + done, bytes.size() - done, position + static_cast<off_t>(done));
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return systemCallFailed("pwrite") != 0;
        done += static_cast<std::size_t>(written);
    }
    return true;
}

/// Walks the lines of a file that may hold anything: a line ends at a newline or after 200 bytes, as a reader with a
/// 201-byte buffer sees it.
class MarkerScan {
  public:
    explicit MarkerScan(unsigned int maxLines) : maxLines_(maxLines) {}

    /// Takes what of the file begins at the next line; at the end of the file all of it. Returns the bytes that it used
    /// up.
    std::size_t feed(std::string_view text, bool atEnd) {
        std::size_t begin = 0;
        while (!over_ && begin < text.size() && (atEnd || text.size() - begin >= kLogLineSize)) {
            const std::string_view line = text.substr(begin, kLogLineSize);
            found_ = ++line_ <= maxLines_ && line.starts_with(kLogEndMark);
            over_ = found_ || line_ > maxLines_;
            if (!over_)
                begin += std::min(line.find('\n'), line.size() - 1) + 1;
        }
        offset_ += static_cast<off_t>(begin);
        return begin;
    }
    bool over() const { return over_; }
    bool found() const { return found_; }
    unsigned int line() const { return line_; }
    off_t offset() const { return offset_; } ///< where the next line, or the marker found, begins

  private:
    unsigned int maxLines_;
    unsigned int line_ = 0;
    off_t offset_ = 0;
    bool over_ = false;
    bool found_ = false;
};

bool findMarker() {
    static std::array<char, kScanBlock> block;
    MarkerScan scan(logState.lineBudget());
    std::size_t kept = 0;
    for (bool atEnd = false; !atEnd && !scan.over();) {
        const ssize_t got =
            pread(logState.fd, block.data() + kept, kScanBlock - kept, scan.offset() + static_cast<off_t>(kept));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return systemCallFailed("pread") != 0;
        atEnd = got == 0;
        const std::string_view text(block.data(), kept + static_cast<std::size_t>(got));
        const std::size_t used = scan.feed(text, atEnd);
        kept = text.size() - used;
        std::memmove(block.data(), block.data() + used, kept);
    }
    logState.toTop();
    if (scan.found()) {
        logState.counter = scan.line();
        logState.position = scan.offset();
    }
    return true;
}

/// Settles where the next line goes. The file is searched for its marker once per run only: what other runs write
/// meanwhile does not move this one.
bool positionLog() {
    struct stat info {};
    if (fstat(logState.fd, &info) != 0)
        return systemCallFailed("fstat") != 0;
    if (info.st_size == 0) {
        logState.toTop();
        return true;
    }
    if (logState.counter == 0)
        return findMarker();
    if (logState.counter > logState.lineBudget())
        logState.toTop();
    return true;
}

/// Writes one line and moves the marker behind it. The new marker is written before the line replaces the old one, so
/// that a run that is killed in between leaves a file with a marker in it.
bool putLine(const LogLine& line) {
    if (!positionLog())
        return false;
    LogState next = logState;
    ++next.counter;
    next.position += static_cast<off_t>(kLogLineSize);
    if (next.counter > next.lineBudget())
        next.toTop();
    const bool roomForOne = next.position == logState.position;
    if (!writeLine(markerLine(), next.position) || (!roomForOne && !writeLine(line, logState.position)))
        return false;
    logState = next;
    return true;
}

bool logPath(const char* fileName, char (&path)[kPathSize]) {
    struct stat info {};
    const bool inLogDirectory = std::strchr(fileName, '/') == nullptr && stat(kLogDirectory, &info) == 0;
    const int length = std::snprintf(path, sizeof path, "%s%s", inLogDirectory ? kLogDirectory : "", fileName);
    return length >= 0 && static_cast<std::size_t>(length) < sizeof path;
}

void closeLog() {
    if (logState.fd >= 0)
        close(logState.fd);
    logState = LogState{};
}

} // namespace

int initLog(const char* fileName, unsigned int maxFileSize) {
    closeLog();
    if (fileName == nullptr || *fileName == '\0') {
        DLLSetLastError(kErrNoFileName, "initLog");
        return 0;
    }
    char path[kPathSize];
    if (!logPath(fileName, path))
        return systemCallFailed("open");
    logState.fd = open(path, O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY, kLogMode);
    if (logState.fd < 0)
        return systemCallFailed("open");
    if (fchmod(logState.fd, kLogMode) != 0)
        return systemCallFailed("fchmod");
    logState.budget = maxFileSize;
    return 1;
}

int finContData() {
    closeLog();
    return 1;
}

int dumpLog(const char* sourceFile, int line, const char* message, const unsigned char* data, unsigned int dataLen) {
    if (logState.fd < 0)
        return 0;
    LogLock lock(logState.fd);
    if (!lock.held())
        return systemCallFailed("flock");
    bool written = putLine(recordLine(sourceFile, line, message));
    if (written && data != nullptr && dataLen != 0)
        written = dumpLines({data, dataLen}, putLine);
    if (!lock.release())
        return systemCallFailed("flock");
    return written ? 1 : 0;
}
