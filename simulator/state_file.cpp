#include "simulator/state_file.h"

#include "simulator/scenario.h"

#include <cerrno>
#include <cstdio>
#include <fcntl.h>
#include <filesystem>
#include <sys/file.h>
#include <sys/stat.h>
#include <system_error>
#include <unistd.h>

namespace zebsim {

namespace {

class Descriptor {
  public:
    Descriptor(const std::string& path, int flags, mode_t mode = 0)
        : fd_(::open(path.c_str(), flags | O_CLOEXEC, mode)) {}
    ~Descriptor() {
        if (fd_ >= 0)
            ::close(fd_);
    }
    Descriptor(const Descriptor&) = delete;
    Descriptor& operator=(const Descriptor&) = delete;
    int get() const { return fd_; }

  private:
    int fd_;
};

std::string reason() {
    return std::generic_category().message(errno);
}

bool writeWhole(int fd, const std::string& text) {
    std::size_t done = 0;
    while (done < text.size()) {
        const ssize_t n = ::write(fd, text.data() + done, text.size() - done);
        if (n < 0 && errno != EINTR)
            return false;
        if (n > 0)
            done += static_cast<std::size_t>(n);
    }
    return true;
}

std::string folderOf(const std::string& path) {
    const std::size_t slash = path.rfind('/');
    if (slash == std::string::npos)
        return ".";
    return slash == 0 ? "/" : path.substr(0, slash);
}

/// The path behind symbolic links, so that the file that they lead to is replaced, and not the link.
std::string behindLinks(std::string path) {
    constexpr int kMostLinks = 40;
    std::error_code error;
    for (int i = 0; i < kMostLinks && std::filesystem::is_symlink(path, error); ++i)
        path = std::filesystem::path(path).parent_path() / std::filesystem::read_symlink(path, error);
    return path;
}

} // namespace

std::optional<std::string> readFile(const std::string& path) {
    const Descriptor file(path, O_RDONLY | O_NONBLOCK); // a FIFO is refused below, not waited for
    if (file.get() < 0 && errno == ENOENT)
        return std::nullopt;
    struct stat info {};
    if (file.get() < 0 || ::fstat(file.get(), &info) != 0)
        throw ScenarioError("", "make it readable (" + reason() + ")");
    if (!S_ISREG(info.st_mode))
        throw ScenarioError("", "name a regular file");
    std::string text;
    char block[65536];
    for (;;) {
        const ssize_t n = ::read(file.get(), block, sizeof block);
        if (n < 0 && errno == EINTR)
            continue;
        if (n < 0)
            throw ScenarioError("", "make it readable (" + reason() + ")");
        if (n == 0)
            return text;
        text.append(block, static_cast<std::size_t>(n));
    }
}

StateFile::StateFile(std::string path) : path_(behindLinks(std::move(path))) {
    const std::string name = path_ + ".lock";
    lock_ = ::open(name.c_str(), O_RDWR | O_CREAT | O_CLOEXEC | O_NOFOLLOW, 0644);
    if (lock_ < 0)
        throw ScenarioError("", "make its folder writable; \"" + name + "\" cannot be made (" + reason() + ")");
    while (::flock(lock_, LOCK_EX) != 0) {
        if (errno == EINTR)
            continue;
        const std::string why = reason();
        ::close(lock_);
        throw ScenarioError("", "put it on a file system with locks (" + why + ")");
    }
}

StateFile::~StateFile() {
    ::close(lock_);
}

std::optional<std::string> StateFile::load() const {
    return readFile(path_);
}

bool StateFile::save(const std::string& text) const {
    const std::string beside = path_ + ".tmp";
    {
        const Descriptor file(beside, O_WRONLY | O_CREAT | O_TRUNC | O_NOFOLLOW | O_NONBLOCK, 0644);
        if (file.get() < 0 || !writeWhole(file.get(), text) || ::fsync(file.get()) != 0) {
            ::unlink(beside.c_str());
            return false;
        }
    }
    if (std::rename(beside.c_str(), path_.c_str()) != 0) {
        ::unlink(beside.c_str());
        return false;
    }
    const Descriptor folder(folderOf(path_), O_RDONLY | O_DIRECTORY);
    return folder.get() >= 0 && ::fsync(folder.get()) == 0;
}

} // namespace zebsim
