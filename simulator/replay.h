// Answers from a recording (ZEBSIM_REPLAY) in place of the model.
#pragma once

#include "recorder/recording.h"
#include "storelib/records/request.h"

#include <cstdint>
#include <memory>

namespace zebsim {

class Replay {
  public:
    /// The replay that the environment asks for, read at the first call; null without one. A file that is no recording
    /// is said on standard error once and answers every request with a failed start.
    static Replay* fromEnvironment();
    /// The replay of that recording. It names nothing at its end.
    static std::unique_ptr<Replay> of(zebrec::Recording recording);

    /// Answers as recorded: the n-th equal request gets the n-th answer, later ones the last. Equal are header and
    /// outgoing data, but for pointers and for what redaction replaces. 0x800E for a request that was never recorded,
    /// which is named on standard error at exit.
    std::uint32_t answer(const _SL_LIB_CMD_PARAM_T& request);

    ~Replay();
    Replay(const Replay&) = delete;
    Replay& operator=(const Replay&) = delete;

  private:
    struct Content;
    explicit Replay(std::unique_ptr<Content> content);
    std::unique_ptr<Content> content_;
};

} // namespace zebsim
