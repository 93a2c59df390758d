#include "recorder/new_recording.h"

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

/// UTC, ISO 8601.
template <std::size_t Size>
void putTimeNow(char (&text)[Size]) {
    const std::time_t now = std::time(nullptr);
    std::tm parts{};
    gmtime_r(&now, &parts);
    std::strftime(text, Size, "%Y-%m-%dT%H:%M:%SZ", &parts);
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

} // namespace

std::unique_ptr<NewRecording> NewRecording::make(const std::string& program, const std::string& path,
                                                 const Start& start, bool redacted) {
    SessionPage& page = *start.page;
    page.redacted = redacted;
    putTimeNow(page.time);
    if (::getrandom(page.key.data(), sizeof page.key, 0) != sizeof page.key) {
        refuse(program, std::string("no random number: ") + std::strerror(errno));
        return nullptr;
    }
    std::unique_ptr<NewRecording> recording(new NewRecording(program, path, page));
    if (const int why = recording->open(); why != 0) {
        refuse(program, path + " cannot be made: " + std::strerror(why));
        return nullptr;
    }
    if (const int why = recording->putHead(); why != 0) {
        refuse(program, path + " cannot be written: " + std::strerror(why));
        return nullptr;
    }
    return recording;
}

NewRecording::~NewRecording() {
    if (file_ < 0)
        return;
    if (!kept_)
        ::unlink(path_.c_str());
    ::close(file_);
}

int NewRecording::open() {
    file_ = ::open(path_.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600);
    return file_ < 0 ? errno : 0;
}

/// Writes the head over the one that is there, whose time stays. Returns 0, or the errno that says why it could not.
int NewRecording::putHead() const {
    const Head head{std::string("zebcli-recorder ") + ZEB_VERSION, versionOf(page_), page_.time, page_.redacted};
    return writeWhole(file_, writeHead(head) + "\n", 0);
}

std::string NewRecording::pathForCommand() const {
    return pathOfFile(file_);
}

void NewRecording::end() const {
    const auto say = [this](const char* what, int why) {
        std::fprintf(stderr, "%s: the recording %s %s: %s\n", program_.c_str(), path_.c_str(), what,
                     std::strerror(why));
    };
    if (page_.stopped != 0)
        say("ends early", page_.stopped);
    if (const int why = putHead(); why != 0)
        say("does not name the library's version", why);
    std::vector<std::string> codes;
    page_.leftOut.forEach([&](const Mention& mention) { codes.push_back(codeOf(Request{mention.header, {}, {}})); });
    if (const std::string line = leftOutLine(codes, page_.leftOut.count); !line.empty())
        std::fprintf(stderr, "%s: %s\n", program_.c_str(), line.c_str());
}

} // namespace zebrec
