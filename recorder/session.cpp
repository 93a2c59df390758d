#include "recorder/session.h"

#include "recorder/load_error.h"

#include <cerrno>
#include <cstring>
#include <dlfcn.h>
#include <new>
#include <unistd.h>

namespace zebrec {

namespace {

constexpr std::uint8_t kLibraryType = 0x00;
constexpr std::uint8_t kInitialise = 0x00;
constexpr std::uint8_t kLibraryVersion = 0x04;
constexpr std::uint8_t kExit = 0x09;

} // namespace

LoadedLibrary::LoadedLibrary(const char* path) {
    handle_ = path != nullptr ? ::dlopen(path, RTLD_LAZY | RTLD_LOCAL) : nullptr;
    if (handle_ != nullptr)
        entry_ = reinterpret_cast<EntryPoint>(::dlsym(handle_, "ProcessLibCommand"));
    if (entry_ != nullptr)
        return;
    failure_ = path == nullptr ? "its path is not set" : loadError();
}

LoadedLibrary::~LoadedLibrary() {
    if (handle_ != nullptr)
        ::dlclose(handle_);
}

Session::Session(SessionPage* page, EntryPoint entry, const char* file) : page_(page), entry_(entry) {
    if (page_ != nullptr && page_->mode == Mode::kRecord && file != nullptr)
        writer_ = std::make_unique<LineWriter>(*page_, file);
}

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
    if (exchange.status != 0 || header[kTypeAt] != kLibraryType)
        return;
    const auto data = exchange.dataAfter;
    if (header[kCommandAt] == kInitialise && data.size() >= sizeof(wire::_SL_CTRL_LIST_T)) {
        wire::_SL_CTRL_LIST_T list;
        std::memcpy(&list, data.data(), sizeof list);
        controllers_.learn(list);
    }
    if (header[kCommandAt] == kLibraryVersion && data.size() >= sizeof(wire::_SL_LIB_VER_T) && page_ != nullptr &&
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
        const bool end = request.header[kTypeAt] == kLibraryType && request.header[kCommandAt] == kExit;
        if (page_->heldBack.count != 0 && !end)
            ++page_->afterHeldBack;
        return false;
    }
    page_->heldBack.add(mentionOf(request, controllers_.numberOf(request.fields().ctrlId), 0));
    return true;
}

bool Session::prepare(const wire::_SL_LIB_CMD_PARAM_T& request) {
    try {
        return forwarder_.prepare(request);
    } catch (const std::bad_alloc&) {
        return false;
    }
}

/// What is learned and written of a request that is over. It is done, whether or not there is memory for that.
void Session::keep(const Exchange& exchange, const Mention& mention) {
    try {
        if (writer_)
            writer_->write(exchange, mention.number, contNoOf(mention));
        learn(exchange);
    } catch (const std::bad_alloc&) {
        if (writer_)
            writer_->stop(ENOMEM);
    }
}

std::uint32_t Session::process(wire::_SL_LIB_CMD_PARAM_T& request) {
    if (entry_ == nullptr)
        return kCannotLoad;
    if (!prepare(request)) {
        if (page_ != nullptr && page_->mode == Mode::kPreview)
            return kNoMemory;
        if (writer_)
            writer_->stop(ENOMEM);
        return entry_(&request);
    }
    if (heldBack())
        return 0;
    const Request& about = forwarder_.exchange().request;
    const auto contNo = controllers_.numberOf(about.fields().ctrlId);
    Mention mention = mentionOf(about, contNo, 0);
    if (page_ != nullptr) {
        mention.number = page_->lines.fetch_add(1) + 1;
        enter(mention);
    }
    const Exchange& exchange = forwarder_.send(entry_, request);
    if (page_ != nullptr)
        leave();
    keep(exchange, mention);
    if (exchange.past != 0 && page_ != nullptr) {
        mention.amount = exchange.past;
        page_->overruns.add(mention);
    }
    return exchange.status;
}

} // namespace zebrec
