// The library that stands between: the one entry point, and what it does with each request.
#include "recorder/line_writer.h"
#include "recorder/session_page.h"

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <dlfcn.h>
#include <memory>
#include <mutex>
#include <new>
#include <unistd.h>

namespace zebrec {

namespace {

constexpr std::uint32_t kCannotLoad = 0x8002;
constexpr std::uint8_t kLibraryType = 0x00;
constexpr std::uint8_t kInitialise = 0x00;
constexpr std::uint8_t kVersion = 0x04;
constexpr std::uint8_t kExit = 0x09;

/// The real library, open as long as this one is.
class RealLibrary {
  public:
    explicit RealLibrary(SessionPage* page) {
        const char* path = std::getenv(kLibraryVariable);
        handle_ = path != nullptr ? ::dlopen(path, RTLD_LAZY | RTLD_LOCAL) : nullptr;
        if (handle_ != nullptr)
            entry_ = reinterpret_cast<EntryPoint>(::dlsym(handle_, "ProcessLibCommand"));
        if (entry_ == nullptr && page != nullptr && page->failed.fetch_add(1) == 0) {
            const char* reason = path == nullptr ? "its path is not set" : ::dlerror();
            std::snprintf(page->failure, sizeof page->failure, "%s", reason != nullptr ? reason : "no reason given");
        }
    }
    ~RealLibrary() {
        if (handle_ != nullptr)
            ::dlclose(handle_);
    }
    RealLibrary(const RealLibrary&) = delete;
    RealLibrary& operator=(const RealLibrary&) = delete;

    EntryPoint entry() const { return entry_; }

  private:
    void* handle_ = nullptr;
    EntryPoint entry_ = nullptr;
};

/// All that one process keeps between its requests.
class Session {
  public:
    Session() : page_(pageOfEnvironment()), real_(page_) {
        const char* file = std::getenv(kFileVariable);
        lost_ = page_ == nullptr && std::getenv(kPageVariable) != nullptr;
        if (lost_)
            std::fputs("zebrec: the program that started the recorder cannot be reached (is /proc there?); "
                       "no request is handed on\n",
                       stderr);
        if (page_ != nullptr && page_->mode == Mode::kRecord && file != nullptr)
            writer_ = std::make_unique<LineWriter>(*page_, file);
    }

    std::uint32_t process(wire::_SL_LIB_CMD_PARAM_T& request);

  private:
    static SessionPage* pageOfEnvironment() {
        const char* path = std::getenv(kPageVariable);
        return path != nullptr ? openPage(path) : nullptr;
    }
    bool heldBack();
    void learn(const Exchange& exchange);
    void enter(const Mention& mention);
    void leave();

    SessionPage* page_;
    /// Nobody can tell any more whether this is a preview, so nothing may be handed on.
    bool lost_ = false;
    RealLibrary real_;
    std::unique_ptr<LineWriter> writer_;
    Forwarder forwarder_;
    ControllerNumbers controllers_;
    SessionPage::Place* place_ = nullptr;
};

/// Notes what the process is inside of, so that it can be named should the process end there.
void Session::enter(const Mention& mention) {
    const auto pid = static_cast<std::int32_t>(::getpid());
    if (place_ == nullptr || place_->pid != pid)
        for (SessionPage::Place& place : page_->place) {
            std::int32_t nobody = 0;
            place_ = nullptr;
            if (place.pid.compare_exchange_strong(nobody, pid)) {
                place_ = &place;
                break;
            }
        }
    if (place_ == nullptr)
        return;
    place_->request = mention;
    place_->inside = true;
}

void Session::leave() {
    if (place_ != nullptr)
        place_->inside = false;
}

void Session::learn(const Exchange& exchange) {
    const Header& header = exchange.request.header;
    if (exchange.status != 0 || header[0] != kLibraryType)
        return;
    const auto data = exchange.dataAfter;
    if (header[1] == kInitialise && data.size() >= sizeof(wire::_SL_CTRL_LIST_T)) {
        wire::_SL_CTRL_LIST_T list;
        std::memcpy(&list, data.data(), sizeof list);
        controllers_.learn(list);
    }
    if (header[1] == kVersion && data.size() >= sizeof(wire::_SL_LIB_VER_T) && page_ != nullptr &&
        !page_->versionKnown) {
        std::memcpy(page_->version, data.data(), sizeof(wire::_SL_LIB_VER_T));
        page_->versionKnown = true;
    }
}

/// Whether the request is one that a preview keeps from the hardware; then it is noted.
bool Session::heldBack() {
    if (page_ == nullptr || page_->mode != Mode::kPreview)
        return false;
    const Request& request = forwarder_.exchange().request;
    if (request.effect() == Effect::kReads) {
        const bool end = request.header[0] == kLibraryType && request.header[1] == kExit;
        if (page_->heldBack.count != 0 && !end)
            ++page_->afterHeldBack;
        return false;
    }
    page_->heldBack.add(mentionOf(request, controllers_.numberOf(request.fields().ctrlId), 0));
    return true;
}

std::uint32_t Session::process(wire::_SL_LIB_CMD_PARAM_T& request) {
    if (lost_ || real_.entry() == nullptr)
        return kCannotLoad;
    if (!forwarder_.prepare(request))
        return kNoMemory;
    if (heldBack())
        return 0;
    const Request& about = forwarder_.exchange().request;
    const auto contNo = controllers_.numberOf(about.fields().ctrlId);
    Mention mention{};
    if (page_ != nullptr) {
        mention = mentionOf(about, contNo, page_->lines.fetch_add(1) + 1);
        enter(mention);
    }
    const Exchange& exchange = forwarder_.send(real_.entry(), request);
    learn(exchange);
    if (page_ == nullptr)
        return exchange.status;
    leave();
    if (writer_)
        writer_->write(exchange, mention.number, contNo);
    if (exchange.past != 0) {
        mention.amount = exchange.past;
        page_->overruns.add(mention);
    }
    return exchange.status;
}

} // namespace

} // namespace zebrec

/// Hands one request to the real library and returns its status. No exception leaves it.
extern "C" __attribute__((visibility("default"))) std::uint32_t ProcessLibCommand(_SL_LIB_CMD_PARAM_T* request) {
    static std::mutex mutex;
    try {
        const std::lock_guard guard(mutex);
        static zebrec::Session session;
        constexpr std::uint32_t kNullData = 0x800B;
        return request == nullptr ? kNullData : session.process(*request);
    } catch (const std::bad_alloc&) {
        return zebrec::kNoMemory;
    } catch (...) {
        return zebrec::kCannotLoad;
    }
}
