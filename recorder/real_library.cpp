#include "recorder/real_library.h"

#include "recorder/load_error.h"
#include "recorder/session_page.h"

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <filesystem>
#include <memory>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

namespace zebrec {

namespace {

namespace fs = std::filesystem;

constexpr char kName[] = "libstorelib.so";

bool isRecorder(const fs::path& path, const Folders& folders) {
    std::error_code none;
    return fs::equivalent(path, fs::path(folders.recorder) / kName, none);
}

/// The folders of a list like LD_LIBRARY_PATH; an empty one is the working directory.
std::vector<fs::path> foldersOf(const char* list) {
    std::vector<fs::path> folders;
    if (list == nullptr || *list == '\0')
        return folders;
    std::string folder;
    for (const char* at = list;; ++at) {
        if (*at != ':' && *at != ';' && *at != '\0') {
            folder += *at;
            continue;
        }
        folders.emplace_back(folder.empty() ? "." : folder);
        folder.clear();
        if (*at == '\0')
            return folders;
    }
}

/// What the loader's cache names, for this kind of machine.
std::string pathOfCache() {
    struct Close {
        void operator()(FILE* pipe) const { ::pclose(pipe); }
    };
    const std::unique_ptr<FILE, Close> pipe(::popen("PATH=/usr/sbin:/sbin:/usr/bin:/bin ldconfig -p 2>/dev/null", "r"));
    std::array<char, 4096> line{};
    while (pipe && std::fgets(line.data(), line.size(), pipe.get()) != nullptr) {
        const std::string text(line.data());
        const std::size_t arrow = text.find(" => ");
        if (text.rfind("\tlibstorelib.so (", 0) == 0 && text.find("x86-64") != std::string::npos &&
            arrow != std::string::npos)
            return text.substr(arrow + 4, text.find('\n') - arrow - 4);
    }
    return "";
}

/// Loads the library in a process of its own, whose end harms nobody. Empty when that went well, else why not.
std::string whyNotLoadable(const std::string& path) {
    int ends[2];
    if (::pipe2(ends, 0) != 0)
        return std::strerror(errno);
    const pid_t child = ::fork();
    if (child == 0) {
        ::close(ends[0]);
        void* handle = ::dlopen(path.c_str(), RTLD_LAZY | RTLD_LOCAL);
        std::string_view reason = handle == nullptr ? loadError() : "";
        if (handle != nullptr && ::dlsym(handle, "ProcessLibCommand") == nullptr)
            reason = "it has no entry point ProcessLibCommand";
        const bool said = reason.empty() || ::write(ends[1], reason.data(), reason.size()) > 0;
        ::_exit(reason.empty() && said ? 0 : 1);
    }
    ::close(ends[1]);
    std::array<char, 512> text{};
    const ssize_t length = ::read(ends[0], text.data(), text.size() - 1);
    ::close(ends[0]);
    int status = 0;
    if (child < 0 || ::waitpid(child, &status, 0) != child)
        return std::strerror(errno);
    if (WIFEXITED(status) && WEXITSTATUS(status) == 0)
        return "";
    if (length > 0)
        return {text.data(), static_cast<std::size_t>(length)};
    return "it ended the program that loaded it";
}

constexpr char kMend[] = "name the controller maker's library with --library PATH";

} // namespace

Folders Folders::ofThisProgram() {
    std::error_code none;
    const fs::path lib = fs::read_symlink("/proc/self/exe", none).parent_path().parent_path() / "lib/zebcli";
    return {lib / "recorder", lib / "simulator"};
}

std::optional<std::string> findRealLibrary(const std::optional<std::string>& named, const Folders& folders,
                                           std::string& reason) {
    std::error_code none;
    std::string path;
    const char* variable = std::getenv(kLibraryVariable);
    if (named)
        path = *named;
    else if (variable != nullptr && *variable != '\0')
        path = variable;
    else
        for (const fs::path& folder : foldersOf(std::getenv("LD_LIBRARY_PATH")))
            if (fs::exists(folder / kName, none) && !isRecorder(folder / kName, folders)) {
                path = folder / kName;
                break;
            }
    if (path.empty())
        path = pathOfCache();
    if (path.empty() || isRecorder(path, folders)) {
        reason = path.empty() ? std::string("no libstorelib.so was found; ") + kMend
                              : path + " is the recorder's own library; " + kMend;
        return std::nullopt;
    }
    path = fs::absolute(path, none);
    const std::string why = whyNotLoadable(path);
    if (why.empty())
        return path;
    reason = path + " cannot be loaded (" + why + "); " + kMend;
    return std::nullopt;
}

} // namespace zebrec
