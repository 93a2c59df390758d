// What stands between one process and the real library: hands requests on, holds back what a preview must not change,
// keeps the recording and marks what is under way.
#pragma once

#include "recorder/forward.h"
#include "recorder/line_writer.h"
#include "recorder/session_page.h"

#include <memory>
#include <string>

namespace zebrec {

/// A loaded library and its entry point, open as long as this object lives.
class LoadedLibrary {
  public:
    /// Loads the library at that path; null fails.
    explicit LoadedLibrary(const char* path);
    ~LoadedLibrary();
    LoadedLibrary(const LoadedLibrary&) = delete;
    LoadedLibrary& operator=(const LoadedLibrary&) = delete;

    EntryPoint entry() const { return entry_; } ///< null when it could not be loaded
    const std::string& failure() const { return failure_; } ///< why

  private:
    void* handle_ = nullptr;
    EntryPoint entry_ = nullptr;
    std::string failure_;
};

/// All that one process keeps between its requests.
class Session {
  public:
    /// Without a page requests are only handed on. `file` is the recording, or null.
    Session(SessionPage* page, EntryPoint entry, const char* file);

    /// Hands a request on, or holds it back, and returns its status. Where the recorder has no memory for it, a preview
    /// refuses it; else it goes on by itself, and the recording ends.
    std::uint32_t process(wire::_SL_LIB_CMD_PARAM_T& request);

    /// The last request; its memory is good until the next one.
    const Exchange& exchange() const { return forwarder_.exchange(); }

    const ControllerNumbers& controllers() const { return controllers_; }

  private:
    bool prepare(const wire::_SL_LIB_CMD_PARAM_T& request);
    bool heldBack();
    void keep(const Exchange& exchange, const Mention& mention);
    void learn(const Exchange& exchange);
    void enter(const Mention& mention);
    void leave();

    SessionPage* page_;
    EntryPoint entry_;
    std::unique_ptr<LineWriter> writer_;
    Forwarder forwarder_;
    ControllerNumbers controllers_;
    SessionPage::Place* place_ = nullptr;
};

/// Status of a request that cannot be handed on because there is no library.
inline constexpr std::uint32_t kCannotLoad = 0x8002;

} // namespace zebrec
