// Preloaded into a program: makes the n-th call of one kind fail. ZEB_FAIL_CALL names the kind, ZEB_FAIL_AT the call,
// and ZEB_FAIL_MARK a file that is made when it came to that. Where one program starts others, ZEB_FAIL_IN names the
// one that is meant. The kind "killed" ends the program by SIGKILL behind the n-th byte that it writes with pwrite.
#include <cerrno>
#include <csignal>
#include <cstdarg>
#include <cstddef>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <fcntl.h>
#include <pthread.h>
#include <sys/mman.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <termios.h>
#include <unistd.h>

#define EXPORT extern "C" __attribute__((visibility("default")))

extern "C" {
void* __libc_malloc(std::size_t size);
void* __libc_calloc(std::size_t count, std::size_t size);
void* __libc_realloc(void* block, std::size_t size);
}

namespace {

const char* failing = "";
const char* mark = nullptr;
long callsLeft = 0;

__attribute__((constructor)) void readSettings() {
    const char* call = std::getenv("ZEB_FAIL_CALL");
    const char* at = std::getenv("ZEB_FAIL_AT");
    mark = std::getenv("ZEB_FAIL_MARK");
    const char* meant = std::getenv("ZEB_FAIL_IN");
    const bool isMeant = meant == nullptr || std::strcmp(meant, program_invocation_short_name) == 0;
    if (call != nullptr && at != nullptr && mark != nullptr && isMeant) {
        failing = call;
        callsLeft = std::strtol(at, nullptr, 10);
    }
}

void leaveMark() {
    const long fd = syscall(SYS_openat, AT_FDCWD, mark, O_WRONLY | O_CREAT, 0600);
    syscall(SYS_close, fd);
}

/// Whether this call is the one that fails; errno is set then.
bool fails(const char* kind, int error) {
    if (callsLeft <= 0 || std::strcmp(kind, failing) != 0 || --callsLeft != 0)
        return false;
    leaveMark();
    errno = error;
    return true;
}

/// Ends the program when the n-th byte is among those that it writes now; the bytes up to that one are written.
void killAmid(int fd, const void* data, std::size_t size, off_t offset) {
    if (callsLeft <= 0 || std::strcmp("killed", failing) != 0)
        return;
    if (size >= static_cast<std::size_t>(callsLeft)) {
        syscall(SYS_pwrite64, fd, data, callsLeft, offset);
        leaveMark();
        std::raise(SIGKILL);
    }
    callsLeft -= static_cast<long>(size);
}

/// The same for an allocation, unless the simulated controllers ask for it: the JSON library in them cannot do without.
bool allocationFails(const void* caller) {
    Dl_info info{};
    const bool simulator = callsLeft > 0 && dladdr(caller, &info) != 0 && info.dli_fname != nullptr &&
                           std::strstr(info.dli_fname, "simulator/libstorelib.so") != nullptr &&
                           std::getenv("ZEBSIM_REPLAY") == nullptr;
    return !simulator && fails("malloc", ENOMEM);
}

template <class Function>
Function* next(const char* name) {
    return reinterpret_cast<Function*>(dlsym(RTLD_NEXT, name));
}

} // namespace

EXPORT void* malloc(std::size_t size) {
    return allocationFails(__builtin_return_address(0)) ? nullptr : __libc_malloc(size);
}

EXPORT void* calloc(std::size_t count, std::size_t size) {
    return allocationFails(__builtin_return_address(0)) ? nullptr : __libc_calloc(count, size);
}

EXPORT void* realloc(void* block, std::size_t size) {
    return allocationFails(__builtin_return_address(0)) ? nullptr : __libc_realloc(block, size);
}

EXPORT int open(const char* path, int flags, ...) {
    va_list args;
    va_start(args, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(args, mode_t) : 0;
    va_end(args);
    return fails("open", EMFILE) ? -1 : next<int(const char*, int, ...)>("open")(path, flags, mode);
}

EXPORT int openat(int folder, const char* path, int flags, ...) {
    va_list args;
    va_start(args, flags);
    const mode_t mode = (flags & O_CREAT) != 0 ? va_arg(args, mode_t) : 0;
    va_end(args);
    return fails("open", EMFILE) ? -1 : next<int(int, const char*, int, ...)>("openat")(folder, path, flags, mode);
}

EXPORT FILE* fopen(const char* path, const char* mode) {
    return fails("open", EMFILE) ? nullptr : next<FILE*(const char*, const char*)>("fopen")(path, mode);
}

EXPORT FILE* fopen64(const char* path, const char* mode) {
    return fails("open", EMFILE) ? nullptr : next<FILE*(const char*, const char*)>("fopen64")(path, mode);
}

EXPORT ssize_t pwrite(int fd, const void* data, std::size_t size, off_t offset) {
    using Pwrite = ssize_t(int, const void*, std::size_t, off_t);
    killAmid(fd, data, size, offset);
    return fails("pwrite", ENOSPC) ? -1 : next<Pwrite>("pwrite")(fd, data, size, offset);
}

EXPORT ssize_t pread(int fd, void* data, std::size_t size, off_t offset) {
    return fails("pread", EIO) ? -1 : next<ssize_t(int, void*, std::size_t, off_t)>("pread")(fd, data, size, offset);
}

EXPORT int flock(int fd, int operation) {
    return fails("flock", ENOLCK) ? -1 : next<int(int, int)>("flock")(fd, operation);
}

EXPORT int fstat(int fd, struct stat* info) {
    return fails("fstat", EIO) ? -1 : next<int(int, struct stat*)>("fstat")(fd, info);
}

EXPORT int fchmod(int fd, mode_t mode) {
    return fails("fchmod", EPERM) ? -1 : next<int(int, mode_t)>("fchmod")(fd, mode);
}

EXPORT ssize_t write(int fd, const void* data, std::size_t size) {
    return fails("write", ENOSPC) ? -1 : next<ssize_t(int, const void*, std::size_t)>("write")(fd, data, size);
}

EXPORT int fsync(int fd) {
    return fails("fsync", EIO) ? -1 : next<int(int)>("fsync")(fd);
}

EXPORT int renameat(int from, const char* old, int to, const char* name) {
    using Rename = int(int, const char*, int, const char*);
    return fails("rename", EIO) ? -1 : next<Rename>("renameat")(from, old, to, name);
}

EXPORT int pthread_create(pthread_t* thread, const pthread_attr_t* attributes, void* (*run)(void*), void* argument) {
    using Create = int(pthread_t*, const pthread_attr_t*, void* (*)(void*), void*);
    return fails("thread", EAGAIN) ? EAGAIN : next<Create>("pthread_create")(thread, attributes, run, argument);
}

EXPORT int tcgetattr(int fd, termios* mode) {
    return fails("terminal", EIO) ? -1 : next<int(int, termios*)>("tcgetattr")(fd, mode);
}

EXPORT int tcsetattr(int fd, int when, const termios* mode) {
    return fails("terminal", EIO) ? -1 : next<int(int, int, const termios*)>("tcsetattr")(fd, when, mode);
}

EXPORT FILE* popen(const char* command, const char* mode) {
    return fails("fork", EAGAIN) ? nullptr : next<FILE*(const char*, const char*)>("popen")(command, mode);
}

EXPORT int system(const char* command) {
    return fails("fork", EAGAIN) ? -1 : next<int(const char*)>("system")(command);
}

EXPORT pid_t fork() {
    return fails("fork", EAGAIN) ? -1 : next<pid_t()>("fork")();
}

EXPORT int pipe2(int* ends, int flags) {
    return fails("pipe", EMFILE) ? -1 : next<int(int*, int)>("pipe2")(ends, flags);
}

EXPORT ssize_t read(int fd, void* data, std::size_t size) {
    return fails("read", EIO) ? -1 : next<ssize_t(int, void*, std::size_t)>("read")(fd, data, size);
}

EXPORT void* mmap(void* address, std::size_t size, int protection, int flags, int fd, off_t offset) {
    using Mmap = void*(void*, std::size_t, int, int, int, off_t);
    return fails("memory", ENOMEM) ? MAP_FAILED : next<Mmap>("mmap")(address, size, protection, flags, fd, offset);
}

EXPORT int mprotect(void* address, std::size_t size, int protection) {
    return fails("memory", ENOMEM) ? -1 : next<int(void*, std::size_t, int)>("mprotect")(address, size, protection);
}

EXPORT int memfd_create(const char* name, unsigned flags) {
    return fails("open", EMFILE) ? -1 : next<int(const char*, unsigned)>("memfd_create")(name, flags);
}

EXPORT int ftruncate(int fd, off_t size) {
    return fails("write", ENOSPC) ? -1 : next<int(int, off_t)>("ftruncate")(fd, size);
}

EXPORT ssize_t getrandom(void* data, std::size_t size, unsigned flags) {
    return fails("random", ENOSYS) ? -1 : next<ssize_t(void*, std::size_t, unsigned)>("getrandom")(data, size, flags);
}

EXPORT ssize_t readlink(const char* path, char* text, std::size_t size) {
    return fails("readlink", EIO) ? -1 : next<ssize_t(const char*, char*, std::size_t)>("readlink")(path, text, size);
}
