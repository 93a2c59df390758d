// A file that is replaced whole or not at all.
#include "zebstat/output.h"

#include <cerrno>
#include <cstdio>
#include <cstring>
#include <deque>
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>
#include <utility>

namespace zebstat {

namespace {

class Fd {
  public:
    explicit Fd(int fd = -1) : fd_(fd) {}
    Fd(Fd&& other) noexcept : fd_(std::exchange(other.fd_, -1)) {}
    Fd& operator=(Fd&& other) noexcept {
        std::swap(fd_, other.fd_);
        return *this;
    }
    ~Fd() {
        if (fd_ >= 0)
            close(fd_);
    }
    int get() const { return fd_; }
    bool open() const { return fd_ >= 0; }
    /// False, with errno set, when closing tells of a write that was lost.
    bool finish() { return close(std::exchange(fd_, -1)) == 0; }

  private:
    int fd_;
};

/// Puts the parts of a path in front of those that are still to be walked.
void prepend(std::deque<std::string>& parts, const std::string& path) {
    std::deque<std::string> first;
    for (std::size_t at = 0; at < path.size();) {
        const std::size_t end = std::min(path.find('/', at), path.size());
        if (end > at)
            first.push_back(path.substr(at, end - at));
        at = end + 1;
    }
    parts.insert(parts.begin(), first.begin(), first.end());
}

/// Whether only root and we ourselves can put a link into the folder.
bool isOurs(int folder) {
    struct stat status {};
    return fstat(folder, &status) == 0 && (status.st_uid == 0 || status.st_uid == geteuid()) &&
           (status.st_mode & (S_IWGRP | S_IWOTH)) == 0;
}

Fd startOf(const std::string& path) {
    return Fd(open(path.starts_with('/') ? "/" : ".", O_PATH | O_DIRECTORY | O_CLOEXEC));
}

/// The target of a link, empty when it cannot be read.
std::string linkTarget(int folder, const std::string& name) {
    char target[4096];
    const ssize_t length = readlinkat(folder, name.c_str(), target, sizeof target);
    return length > 0 ? std::string(target, static_cast<std::size_t>(length)) : "";
}

/// Walks to a folder part by part, so that each link on the way is judged by the folder that it stands in. Not open,
/// with errno set, when that fails.
Fd openFolder(const std::string& path) {
    constexpr int kMostLinks = 40;
    std::deque<std::string> parts;
    prepend(parts, path);
    Fd folder = startOf(path);
    for (int links = 0; folder.open() && !parts.empty();) {
        const std::string name = std::exchange(parts.front(), {});
        parts.pop_front();
        Fd next(openat(folder.get(), name.c_str(), O_PATH | O_NOFOLLOW | O_CLOEXEC));
        struct stat status {};
        if (!next.open() || fstat(next.get(), &status) != 0)
            return Fd();
        if (!S_ISLNK(status.st_mode)) {
            folder = std::move(next);
            continue;
        }
        const std::string target = linkTarget(folder.get(), name);
        if (!isOurs(folder.get()) || target.empty() || ++links > kMostLinks) {
            errno = ELOOP;
            return Fd();
        }
        prepend(parts, target);
        if (target.starts_with('/'))
            folder = startOf(target);
    }
    if (!folder.open())
        return Fd();
    return Fd(openat(folder.get(), ".", O_RDONLY | O_DIRECTORY | O_CLOEXEC)); // one that can be synced
}

/// Whether something stands there that must stay: a device, a pipe, a folder.
bool isInTheWay(int folder, const std::string& name) {
    struct stat status {};
    return fstatat(folder, name.c_str(), &status, AT_SYMLINK_NOFOLLOW) == 0 && !S_ISREG(status.st_mode) &&
           !S_ISLNK(status.st_mode);
}

bool fill(Fd& file, std::string_view text) {
    while (!text.empty()) {
        const ssize_t written = write(file.get(), text.data(), text.size());
        if (written < 0 && errno == EINTR)
            continue;
        if (written <= 0)
            return false;
        text.remove_prefix(static_cast<std::size_t>(written));
    }
    return fchmod(file.get(), 0644) == 0 && fsync(file.get()) == 0 && file.finish();
}

} // namespace

std::string replaceFile(const std::string& path, std::string_view text) {
    const auto failed = [&] { return path + " cannot be written: " + std::strerror(errno); };
    const std::size_t slash = path.rfind('/');
    const std::string name = slash == std::string::npos ? path : path.substr(slash + 1);
    if (name.empty() || name == "." || name == "..")
        return "'" + path + "' names no file; give --output the name of one";
    const Fd folder = openFolder(slash == std::string::npos ? "" : path.substr(0, slash + 1));
    if (!folder.open())
        return failed();
    if (isInTheWay(folder.get(), name))
        return path + " is no regular file; give --output the name of one";
    // The name beside it does not end like the file's own: whoever gathers such files must not find a half one.
    const std::string beside = "." + name.substr(0, 200) + "." + std::to_string(getpid()) + ".new";
    unlinkat(folder.get(), beside.c_str(), 0);
    Fd file(openat(folder.get(), beside.c_str(), O_WRONLY | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, 0600));
    if (!file.open())
        return failed();
    if (!fill(file, text) || renameat(folder.get(), beside.c_str(), folder.get(), name.c_str()) != 0) {
        std::string reason = failed();
        unlinkat(folder.get(), beside.c_str(), 0);
        return reason;
    }
    fsync(folder.get()); // should this fail, a crash may bring the old file back, which is whole too
    return {};
}

} // namespace zebstat
