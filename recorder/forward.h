// Hands a request to the real library in buffers of the recorder's own.
#pragma once

#include "recorder/guarded_buffer.h"
#include "recorder/request.h"

#include <cstdint>
#include <optional>

namespace zebrec {

using EntryPoint = std::uint32_t (*)(wire::_SL_LIB_CMD_PARAM_T*);

/// What a forwarded request was like and what came of it. The pieces of memory live until the next one is forwarded.
struct Exchange {
    Request request;
    Bytes dataBefore;
    std::span<const std::uint8_t> dataAfter;
    bool hasInner = false;
    Bytes innerBefore;
    std::span<const std::uint8_t> innerAfter;
    std::size_t past = 0; ///< bytes that the library wrote behind the declared size
    std::uint64_t microseconds = 0;
    std::uint32_t status = 0;
};

/// Status of a request for which the recorder itself has no memory.
inline constexpr std::uint32_t kNoMemory = 0x8015;

class Forwarder {
  public:
    /// Copies what the caller sends. What it declares must lie in its memory, as the real library would expect too.
    /// False when there is no memory for the copies.
    bool prepare(const wire::_SL_LIB_CMD_PARAM_T& request);

    /// What prepare() has read; filled further by send().
    const Exchange& exchange() const { return exchange_; }

    /// Sends it and gives the caller what it was told, in the declared size.
    const Exchange& send(EntryPoint entry, wire::_SL_LIB_CMD_PARAM_T& request);

  private:
    void giveBack(wire::_SL_LIB_CMD_PARAM_T& request);

    Exchange exchange_;
    GuardedBuffer header_;
    GuardedBuffer data_;
    GuardedBuffer inner_;
    void* innerOfCaller_ = nullptr;
};

} // namespace zebrec
