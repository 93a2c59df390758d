// Faults on demand: chosen requests answer a chosen status, too little, nonsense, or counts that lie.
#pragma once

#include "storelib/records/request.h"

#include <cstdint>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace zebsim {

struct Fault {
    enum class Action { kStatus, kTruncate, kRandom, kPatch, kFill, kBumpSeq };
    using Patch = std::pair<std::uint32_t, std::vector<std::uint8_t>>; ///< offset, bytes

    std::optional<std::uint8_t> type;
    std::optional<std::uint8_t> cmd;
    std::optional<std::uint32_t> ctrl;
    std::optional<std::uint32_t> ref;
    std::optional<std::uint32_t> opcode;
    std::uint32_t nth = 0; ///< 1-based; 0 = every one
    std::uint32_t from = 0; ///< this one and all after; 0 = no lower end
    Action action = Action::kStatus;
    std::uint64_t value = 0; ///< status, length, seed or byte
    std::vector<Patch> patches;
    std::uint64_t matched = 0; ///< requests that it has matched so far
};

class Faults {
  public:
    /// Adds the faults of a JSON array. Throws ScenarioError for a bad one.
    void add(const std::string& json);

    /// Counts the request and answers the first fault that strikes it, or null.
    const Fault* strike(const _SL_LIB_CMD_PARAM_T& request, std::optional<std::uint32_t> opcode);

  private:
    std::vector<Fault> faults_;
};

/// Overwrites what a fault overwrites in the caller's room after the answer is there.
void applyToReply(const Fault& fault, std::span<std::uint8_t> room);

} // namespace zebsim
