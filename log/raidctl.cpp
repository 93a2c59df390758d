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
LostRecords lostSoFar;

int systemCallFailed(const char* call) {
    DLLSetLastError(kErrSystemCall, call);
    return 0;
}

/// Counts a record that a failed call, the last one in the library error registry, kept out of the log.
int recordLost() {
    if (lostSoFar.count++ == 0) {
        lostSoFar.error = errno;
        DLLGetLastError(&lostSoFar.call);
    }
    return 0;
}

/// Takes the exclusive lock. Anyone who may read the log can hold it, so a run waits for it only so long in all: the
/// log never stops the program.
bool lockFile(int fd) {
    constexpr useconds_t kPause = 2000;
    constexpr int kMostPauses = 5000; // ten seconds
    static int pauses = 0;
    while (flock(fd, LOCK_EX | LOCK_NB) != 0) {
        if ((errno != EWOULDBLOCK && errno != EINTR) || pauses == kMostPauses)
            return false;
        ++pauses;
        usleep(kPause);
    }
    return true;
}

/// The exclusive lock on the log file, held for one record with its dump.
class LogLock {
  public:
    explicit LogLock(int fd) : fd_(fd), held_(lockFile(fd)) {}
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

bool writeBytes(std::string_view bytes, off_t position) {
    while (!bytes.empty()) {
        const ssize_t written = pwrite(logState.fd, bytes.data(), bytes.size(), position);
        if (written < 0 && errno == EINTR)
            continue;
        if (written == 0)
            errno = ENOSPC;
        if (written <= 0)
            return systemCallFailed("pwrite") != 0;
        bytes.remove_prefix(static_cast<std::size_t>(written));
        position += static_cast<off_t>(written);
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

/// Room for what is read of the file, then for what is written to it.
std::array<char, kScanBlock> fileBlock;

bool findMarker() {
    MarkerScan scan(logState.lineBudget());
    std::size_t kept = 0;
    for (bool atEnd = false; !atEnd && !scan.over();) {
        const ssize_t got =
            pread(logState.fd, fileBlock.data() + kept, kScanBlock - kept, scan.offset() + static_cast<off_t>(kept));
        if (got < 0 && errno == EINTR)
            continue;
        if (got < 0)
            return systemCallFailed("pread") != 0;
        atEnd = got == 0;
        const std::string_view text(fileBlock.data(), kept + static_cast<std::size_t>(got));
        const std::size_t used = scan.feed(text, atEnd);
        kept = text.size() - used;
        std::memmove(fileBlock.data(), fileBlock.data() + used, kept);
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

/// The lines of one record on their way to the file, written together as far as they follow each other in the ring.
class RecordWriter {
  public:
    bool add(const LogLine& line) {
        if (count_ == room() && !flush())
            return false;
        put(line, count_++);
        return true;
    }

    /// Writes the lines and moves the marker behind them.
    bool flush() {
        LogState next = logState;
        next.counter += static_cast<unsigned int>(count_);
        next.position += static_cast<off_t>(count_ * kLogLineSize);
        if (next.counter > next.lineBudget())
            next.toTop();
        if (!writeTo(next.position))
            return false;
        logState = next;
        count_ = 0;
        return true;
    }

  private:
    /// How many lines go together: those up to the end of the ring. In a file whose lines are not whole, where a line
    /// and the marker may overlap, each goes alone.
    static std::size_t room() {
        const auto whole = static_cast<off_t>((logState.counter - 1) * kLogLineSize);
        if (logState.position != whole || logState.counter > logState.lineBudget())
            return 1;
        return std::min<std::size_t>(logState.lineBudget() - logState.counter + 1, kScanBlock / kLogLineSize - 1);
    }

    /// The first line replaces the old marker last of all, so that a run that is killed in between leaves a file with a
    /// marker in it. Of lines that fill the ring exactly, the first has no room beside the marker.
    bool writeTo(off_t markerPosition) {
        put(markerLine(), count_);
        const bool markerFollows = markerPosition > logState.position;
        if (!markerFollows && !writeBytes(lines(count_, 1), markerPosition))
            return false;
        const std::string_view rest = lines(1, count_ - 1 + (markerFollows ? 1 : 0));
        if (!writeBytes(rest, logState.position + static_cast<off_t>(kLogLineSize)))
            return false;
        return markerPosition == logState.position || writeBytes(lines(0, 1), logState.position);
    }

    static void put(const LogLine& line, std::size_t at) {
        char* to = fileBlock.data() + at * kLogLineSize;
        *std::copy(line.begin(), line.end(), to) = '\n';
    }
    static std::string_view lines(std::size_t first, std::size_t count) {
        return {fileBlock.data() + first * kLogLineSize, count * kLogLineSize};
    }

    std::size_t count_ = 0;
};

bool inLogDirectory(const char* fileName) {
    struct stat info {};
    return std::strchr(fileName, '/') == nullptr && stat(kLogDirectory, &info) == 0;
}

/// Opens the log, or makes it. Nothing but a file is taken: what stands there in its place, a device above all, would
/// be written to and get another mode. In a working directory, which may be anybody's, a link is no log either.
int openLog(const char* fileName) {
    char path[kPathSize];
    const bool ours = inLogDirectory(fileName);
    const int length = std::snprintf(path, sizeof path, "%s%s", ours ? kLogDirectory : "", fileName);
    if (length < 0 || static_cast<std::size_t>(length) >= sizeof path)
        return -1;
    const bool anybodys = !ours && std::strchr(fileName, '/') == nullptr;
    const int flags = O_RDWR | O_CREAT | O_CLOEXEC | O_NOCTTY | O_NONBLOCK | (anybodys ? O_NOFOLLOW : 0);
    const int fd = open(path, flags, kLogMode);
    struct stat info {};
    if (fd >= 0 && (fstat(fd, &info) != 0 || !S_ISREG(info.st_mode))) {
        close(fd);
        return -1;
    }
    return fd;
}

void closeLog() {
    if (logState.fd >= 0)
        close(logState.fd);
    logState = LogState{};
}

} // namespace

int initLog(const char* fileName, unsigned int maxFileSize) {
    closeLog();
    lostSoFar = LostRecords{};
    if (fileName == nullptr || *fileName == '\0') {
        DLLSetLastError(kErrNoFileName, "initLog");
        return 0;
    }
    logState.fd = openLog(fileName);
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

const LostRecords& lostRecords() {
    return lostSoFar;
}

int dumpLog(const char* sourceFile, int line, const char* message, const unsigned char* data, unsigned int dataLen) {
    if (logState.fd < 0)
        return 0;
    LogLock lock(logState.fd);
    if (!lock.held()) {
        systemCallFailed("flock");
        return recordLost();
    }
    RecordWriter record;
    bool written = positionLog() && record.add(recordLine(sourceFile, line, message));
    if (written && data != nullptr && dataLen != 0)
        written = dumpLines({data, dataLen}, [&](const LogLine& dumped) { return record.add(dumped); });
    written = written && record.flush();
    if (!written)
        recordLost();
    if (!lock.release())
        return systemCallFailed("flock");
    return written ? 1 : 0;
}
