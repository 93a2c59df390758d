// The library that stands between: the one entry point.
#include "recorder/session.h"

#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <new>

namespace zebrec {

namespace {

/// What the environment asks for: the page of the program that started the command, the real library, the recording.
class Between {
  public:
    Between() {
        if (page_ == nullptr && std::getenv(kPageVariable) != nullptr) {
            // Nobody can tell any more whether this is a preview, so nothing may be handed on.
            std::fputs("zebrec: the program that started the recorder cannot be reached (is /proc there?); "
                       "no request is handed on\n",
                       stderr);
            return;
        }
        if (real_.entry() == nullptr && page_ != nullptr && page_->failed.fetch_add(1) == 0)
            std::snprintf(page_->failure, sizeof page_->failure, "%s", real_.failure().c_str());
        session_ = std::make_unique<Session>(page_, real_.entry(), std::getenv(kFileVariable));
    }

    std::uint32_t process(wire::_SL_LIB_CMD_PARAM_T& request) {
        return session_ ? session_->process(request) : kCannotLoad;
    }

  private:
    static SessionPage* pageOfEnvironment() {
        const char* path = std::getenv(kPageVariable);
        return path != nullptr ? openPage(path) : nullptr;
    }

    SessionPage* page_ = pageOfEnvironment();
    LoadedLibrary real_{std::getenv(kLibraryVariable)};
    std::unique_ptr<Session> session_;
};

} // namespace

} // namespace zebrec

/// Hands one request to the real library and returns its status. No exception leaves it.
extern "C" __attribute__((visibility("default"))) std::uint32_t ProcessLibCommand(_SL_LIB_CMD_PARAM_T* request) {
    static std::mutex mutex;
    try {
        const std::lock_guard guard(mutex);
        static zebrec::Between between;
        constexpr std::uint32_t kNullData = 0x800B;
        return request == nullptr ? kNullData : between.process(*request);
    } catch (const std::bad_alloc&) {
        return zebrec::kNoMemory;
    } catch (...) {
        return zebrec::kCannotLoad;
    }
}
