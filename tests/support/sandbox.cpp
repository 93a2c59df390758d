#include "tests/support/sandbox.h"
#include "tests/support/paths.h"

#include <algorithm>
#include <atomic>
#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <cstring>
#include <fcntl.h>
#include <fstream>
#include <ostream>
#include <sched.h>
#include <sstream>
#include <sys/mount.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/un.h>
#include <thread>
#include <unistd.h>

#include "tests/support/child.h"

namespace fs = std::filesystem;

namespace zebtest {
namespace {

constexpr const char* kDeviceFiles[] = {"null", "zero", "full", "random", "urandom", "tty", "ptmx", "loop0"};
constexpr const char* kDeviceFolders[] = {"pts", "shm"};

std::string systemError(const std::string& step) {
    return step + ": " + std::strerror(errno);
}

std::string bindOver(const fs::path& source, const fs::path& target) {
    if (mount(source.c_str(), target.c_str(), nullptr, MS_BIND | MS_REC, nullptr) != 0)
        return systemError("mount of " + source.string() + " on " + target.string());
    return {};
}

/// Moves the calling thread, and no other, into a mount namespace of its own.
std::string leaveSharedNamespace() {
    if (unshare(CLONE_NEWNS) != 0)
        return systemError("unshare(CLONE_NEWNS), which needs root");
    return mount(nullptr, "/", nullptr, MS_REC | MS_PRIVATE, nullptr) == 0 ? "" : systemError("mount(MS_PRIVATE)");
}

std::string mountSandbox(const fs::path& root) {
    const fs::path host = "/dev";
    std::string error = leaveSharedNamespace();
    const auto bind = [&error](const fs::path& source, const fs::path& target) {
        if (error.empty() && fs::exists(source))
            error = bindOver(source, target);
    };
    for (const char* name : kDeviceFiles)
        bind(host / name, root / "dev" / name);
    for (const char* name : kDeviceFolders)
        bind(host / name, root / "dev" / name);
    bind(root / "dev", host);
    if (error.empty())
        error = bindOver(root / "opt", "/opt");
    return error;
}

bool sanitizerSpoke(const RunResult& result) {
    return result.exitStatus == kSanitizerExit || result.err.find("Sanitizer:") != std::string::npos ||
           result.err.find("runtime error:") != std::string::npos;
}

} // namespace

Sandbox::Sandbox() {
    std::string name = (fs::temp_directory_path() / "zebtest-XXXXXX").string();
    if (mkdtemp(name.data()) == nullptr) {
        broken_ = systemError("mkdtemp");
        return;
    }
    root_ = name;
    chmod(root_.c_str(), 0755);
    for (const auto& folder : {logFolder(), work(), bin(), noLibrary(), root_ / "dev"})
        fs::create_directories(folder);
    chmod(work().c_str(), 0777);
    fs::copy_file(paths::patternFile, patternFile());
    for (const char* device : kDeviceFiles)
        writeFile(root_ / "dev" / device, "");
    for (const char* folder : kDeviceFolders)
        fs::create_directory(root_ / "dev" / folder);
    fs::create_symlink("/proc/self/fd", root_ / "dev/fd");
    (void)signal(SIGPIPE, SIG_IGN); // a program may end with its input unread
    openSyslog();
    openNamespace();
}

Sandbox::~Sandbox() {
    for (const int fd : {namespace_, syslog_})
        if (fd >= 0)
            close(fd);
    std::error_code ignored;
    if (!root_.empty())
        fs::remove_all(root_, ignored);
}

const std::string& Sandbox::unavailable() {
    static const std::string reason = Sandbox().broken_;
    return reason;
}

void Sandbox::openSyslog() {
    sockaddr_un address{};
    address.sun_family = AF_UNIX;
    const std::string path = (root_ / "dev/log").string();
    if (path.size() >= sizeof address.sun_path) {
        broken_ = "the temporary folder's name is too long for a socket: " + path;
        return;
    }
    path.copy(address.sun_path, path.size());
    syslog_ = socket(AF_UNIX, SOCK_DGRAM | SOCK_CLOEXEC, 0);
    if (syslog_ < 0 || bind(syslog_, reinterpret_cast<sockaddr*>(&address), sizeof address) != 0 ||
        chmod(path.c_str(), 0666) != 0)
        broken_ = systemError("socket " + path);
}

/// The namespace is made by a thread that ends at once; the descriptor keeps it, and each run enters it.
void Sandbox::openNamespace() {
    std::thread([this] {
        std::string error = broken_.empty() ? mountSandbox(root_) : broken_;
        if (error.empty()) {
            namespace_ = open("/proc/thread-self/ns/mnt", O_RDONLY | O_CLOEXEC);
            error = namespace_ < 0 ? systemError("/proc/thread-self/ns/mnt") : "";
        }
        broken_ = error;
    }).join();
}

std::vector<std::string> Sandbox::environment(const RunOptions& options) const {
    const std::string exitCode = "exitcode=" + std::to_string(kSanitizerExit);
    // The search for leaks takes a third of a run; what runs the commands of other tests again does without.
    const char* leaks = std::getenv("ZEB_TEST_LEAKS");
    const std::string memory = exitCode + ":malloc_context_size=10:allocator_may_return_null=1:detect_leaks=";
    std::map<std::string, std::string> variables{
        {"PATH", bin().string() + ":/usr/sbin:/usr/bin:/sbin:/bin"},
        {"LD_LIBRARY_PATH", options.libraryDir.value_or(paths::libraryDir).string()},
        {"LC_ALL", "C"},
        {"TZ", "UTC0"},
        {"ASAN_OPTIONS", memory + (leaks != nullptr ? leaks : "1")},
        {"LSAN_OPTIONS", exitCode},
        {"UBSAN_OPTIONS", exitCode + ":halt_on_error=1:print_stacktrace=1"}};
    for (const auto& [name, value] : options.env)
        variables[name] = value;
    std::vector<std::string> texts;
    for (const auto& [name, value] : variables)
        texts.push_back(name + "=" + value);
    return texts;
}

RunResult Sandbox::run(std::vector<std::string> args) {
    RunOptions options;
    options.args = std::move(args);
    return run(options);
}

RunResult Sandbox::runAlone(const RunOptions& options) {
    static std::atomic<unsigned> runNumber{0};
    const fs::path traceFile = root_ / ("trace." + std::to_string(++runNumber));
    RunResult result;
    std::string error = broken_;
    auto channels = error.empty() ? openChannels(options, error) : std::nullopt;
    if (channels) {
        Launch what{options.program.empty() ? paths::zebcli : options.program,
                    {options.argv0},
                    environment(options),
                    work().string(),
                    namespace_};
        what.argv.insert(what.argv.end(), options.args.begin(), options.args.end());
        if (options.trace)
            what.env.push_back("ZEBSIM_TRACE=" + traceFile.string());
        if (channels->master.open())
            tcgetattr(channels->master.get(), &result.terminalBefore);
        const pid_t pid = launch(what, options, *channels, error);
        error = pid > 0 ? converse(pid, options, *channels, syslog_, result) : error;
    }
    if (options.trace) {
        result.trace = readFile(traceFile);
        std::error_code ignored;
        fs::remove(traceFile, ignored);
    }
    if (!error.empty())
        ADD_FAILURE() << "run: " << error << "\n" << result;
    if (sanitizerSpoke(result))
        ADD_FAILURE() << "a sanitizer found a fault\n" << result;
    return result;
}

std::ostream& operator<<(std::ostream& os, const RunResult& result) {
    os << (result.signal != 0 ? "signal " + std::to_string(result.signal)
                              : "exit status " + std::to_string(result.exitStatus));
    return os << (result.timedOut ? ", timed out" : "") << "\n--- standard output\n"
              << result.out << "\n--- standard error\n"
              << result.err << "\n---";
}

bool sameMode(const termios& a, const termios& b) {
    return a.c_iflag == b.c_iflag && a.c_oflag == b.c_oflag && a.c_cflag == b.c_cflag && a.c_lflag == b.c_lflag &&
           std::ranges::equal(a.c_cc, b.c_cc);
}

void SandboxTest::SetUp() {
    if (const std::string& reason = Sandbox::unavailable(); !reason.empty()) {
        if (std::getenv("ZEB_TESTS_MUST_RUN") != nullptr)
            FAIL() << "no sandbox here: " << reason;
        GTEST_SKIP() << "no sandbox here: " << reason;
    }
}

std::string readFile(const fs::path& path) {
    std::ostringstream bytes;
    bytes << std::ifstream(path, std::ios::binary).rdbuf();
    return std::move(bytes).str();
}

void writeFile(const fs::path& path, std::string_view bytes) {
    std::error_code ignored;
    fs::create_directories(path.parent_path(), ignored);
    std::ofstream file(path, std::ios::binary | std::ios::trunc);
    file.write(bytes.data(), static_cast<std::streamsize>(bytes.size()));
    if (!file.flush())
        ADD_FAILURE() << "cannot write " << path;
}

} // namespace zebtest
