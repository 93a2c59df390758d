#include "recorder/start.h"

#include "recorder/recording.h"
#include "recorder/show.h"
#include "recorder/write_whole.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/random.h>
#include <unistd.h>

namespace zebrec {

namespace {

std::string timeNow() {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    gmtime_r(&now, &parts);
    char text[32];
    std::strftime(text, sizeof text, "%Y-%m-%dT%H:%M:%SZ", &parts);
    return text;
}

/// The version text of the library: two fields of its record, each up to its NUL.
std::string versionOf(const SessionPage& page) {
    if (!page.versionKnown)
        return "";
    constexpr std::size_t kRevision = 4;
    const std::string revision(page.version, strnlen(page.version, kRevision));
    const std::string version(page.version + kRevision,
                              strnlen(page.version + kRevision, sizeof page.version - kRevision));
    return revision + " " + version;
}

/// Writes the head over the one that is there, whose time stays. Returns 0, or the errno that says why it could not.
int putHead(int file, const SessionPage& page) {
    const Head head{std::string("zebcli-recorder ") + ZEB_VERSION, versionOf(page), page.time, page.redacted};
    return writeWhole(file, writeHead(head) + "\n", 0);
}

} // namespace

std::optional<Start> beginSession(const std::string& program, Mode mode, const std::optional<std::string>& library) {
    Start start;
    start.folders = Folders::ofThisProgram();
    std::string reason;
    const auto real = findRealLibrary(library, start.folders, reason);
    if (!real) {
        refuse(program, reason);
        return std::nullopt;
    }
    start.realLibrary = *real;
    start.page = makePage(start.pageFile);
    if (start.page == nullptr) {
        refuse(program, std::string("no shared memory: ") + std::strerror(errno));
        return std::nullopt;
    }
    start.page->mode = mode;
    return start;
}

int makeRecording(const std::string& program, const std::string& path, const Start& start, bool redacted) {
    SessionPage& page = *start.page;
    page.redacted = redacted;
    std::snprintf(page.time, sizeof page.time, "%s", timeNow().c_str());
    if (::getrandom(page.key.data(), sizeof page.key, 0) != sizeof page.key) {
        refuse(program, std::string("no random number: ") + std::strerror(errno));
        return -1;
    }
    const int file = ::open(path.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    if (file < 0) {
        refuse(program, path + " cannot be made: " + std::strerror(errno));
        return -1;
    }
    const int why = putHead(file, page);
    if (why == 0)
        return file;
    ::unlink(path.c_str());
    ::close(file);
    refuse(program, path + " cannot be written: " + std::strerror(why));
    return -1;
}

void endRecording(const std::string& program, const std::string& path, int file, SessionPage& page) {
    if (const int why = putHead(file, page); why != 0 && page.stopped == 0)
        page.stopped = why;
    if (page.stopped != 0)
        std::fprintf(stderr, "%s: the recording %s ends early: %s\n", program.c_str(), path.c_str(),
                     std::strerror(page.stopped));
    std::vector<std::string> codes;
    page.leftOut.forEach([&](const Mention& mention) { codes.push_back(codeOf(Request{mention.header, {}, {}})); });
    if (const std::string line = leftOutLine(codes, page.leftOut.count); !line.empty())
        std::fprintf(stderr, "%s: %s\n", program.c_str(), line.c_str());
}

} // namespace zebrec
