// The library's one entry point.
#include "simulator/call.h"
#include "simulator/dispatch.h"
#include "simulator/replay.h"
#include "simulator/scenario_io.h"

#include <cerrno>
#include <chrono>
#include <cstdio>
#include <cstdlib>
#include <fcntl.h>
#include <mutex>
#include <thread>
#include <unistd.h>

namespace zebsim {

namespace {

std::unique_ptr<Session>& session() {
    static std::unique_ptr<Session> theSession;
    return theSession;
}

constexpr std::uint32_t kOutOfMemory = 0x8015;

bool isLibraryCommand(const _SL_LIB_CMD_PARAM_T& request, std::uint8_t cmd) {
    return request.cmdType == 0 && request.cmd == cmd;
}

std::uint32_t initialise(const _SL_LIB_CMD_PARAM_T& request) {
    session().reset();
    std::unique_ptr<Session> fresh = Session::start();
    if (!fresh)
        return kInitFailed;
    const Strike strike = fresh->faults().strike(request, std::nullopt);
    Stage stage{request, fresh->model()};
    if (!strike.due(Phase::kRequest, stage))
        stage.status = answerControllerList(stage, strike);
    if (stage.status == kSuccess)
        session() = std::move(fresh);
    return stage.status;
}

std::uint32_t exitLibrary() {
    const bool saved = session()->finish();
    session().reset();
    return saved ? kSuccess : kOsFailure;
}

std::uint32_t answer(const _SL_LIB_CMD_PARAM_T& request) {
    constexpr std::uint8_t kInitialise = 0x00;
    constexpr std::uint8_t kExit = 0x09;
    if (isLibraryCommand(request, kInitialise))
        return initialise(request);
    if (!session())
        return kNotInitialized;
    session()->passTime();
    const Strike strike = session()->faults().strike(request, opcodeOf(request));
    Stage stage{request, session()->model()};
    if (!strike.due(Phase::kRequest, stage)) {
        if (isLibraryCommand(request, kExit))
            return exitLibrary();
        stage.status = dispatch(*session(), stage, strike);
    }
    const std::uint32_t status = stage.status;
    strike.due(Phase::kAfter, stage);
    if (stage.changed)
        session()->save();
    return status;
}

/// The trace line up to the status; taken before the answer overwrites what went out.
std::string traceHead(const _SL_LIB_CMD_PARAM_T& request) {
    constexpr std::size_t kHeaderSize = offsetof(_SL_LIB_CMD_PARAM_T, data);
    char code[8];
    std::snprintf(code, sizeof code, "%02X/%02X", unsigned{request.cmdType}, unsigned{request.cmd});
    return std::string(code) + " header=" + hexOfBytes(reinterpret_cast<const std::uint8_t*>(&request), kHeaderSize) +
           " data=" + (request.data == nullptr ? "null" : std::to_string(request.dataSize)) +
           " out=" + outgoingBytes(request);
}

void writeTrace(const char* path, std::string line, std::uint32_t status) {
    char text[24];
    std::snprintf(text, sizeof text, " status=0x%08X\n", status);
    line += text;
    const int fd = ::open(path, O_WRONLY | O_APPEND | O_CREAT | O_CLOEXEC | O_NONBLOCK, 0644); // a FIFO must not block
    if (fd < 0)
        return;
    ssize_t written = -1;
    do {
        written = ::write(fd, line.data(), line.size());
    } while (written < 0 && errno == EINTR);
    ::close(fd);
}

/// Makes a call take the time that ZEBSIM_LATENCY_US says, counted from its construction.
class Latency {
  public:
    Latency() : end_(Clock::now() + wantedLatency().value_or(std::chrono::microseconds(0))) {}
    ~Latency() {
        // A sleeper wakes up a little too late; the rest of the time is spent awake, so that calls take what was asked.
        constexpr std::chrono::microseconds kLateness(150);
        std::this_thread::sleep_until(end_ - kLateness);
        while (Clock::now() < end_) {
        }
    }
    Latency(const Latency&) = delete;
    Latency& operator=(const Latency&) = delete;

  private:
    using Clock = std::chrono::steady_clock;
    Clock::time_point end_;
};

std::uint32_t process(const _SL_LIB_CMD_PARAM_T& request) {
    const Latency latency;
    const char* tracePath = std::getenv("ZEBSIM_TRACE");
    std::string head;
    if (tracePath != nullptr && *tracePath != '\0')
        head = traceHead(request);
    std::uint32_t status = kOsFailure;
    try {
        Replay* replay = Replay::fromEnvironment();
        status = replay != nullptr ? replay->answer(request) : answer(request);
    } catch (const std::bad_alloc&) {
        status = kOutOfMemory;
    }
    if (!head.empty())
        writeTrace(tracePath, std::move(head), status);
    return status;
}

} // namespace

} // namespace zebsim

/// Carries out one request and returns its status. No exception leaves it.
extern "C" __attribute__((visibility("default"))) std::uint32_t ProcessLibCommand(_SL_LIB_CMD_PARAM_T* request) {
    static std::mutex mutex;
    try {
        const std::lock_guard guard(mutex);
        return request == nullptr ? std::uint32_t{zebsim::kNullData} : zebsim::process(*request);
    } catch (...) {
        return zebsim::kOsFailure;
    }
}
