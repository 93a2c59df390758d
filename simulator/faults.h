// Faults on demand: chosen requests answer a chosen status, too little, nonsense or other values, and what somebody
// else does to the hardware meanwhile.
//
// A fault is a pick (which requests) and effects (what is done, and at which point of the request's way). Whoever
// carries a request names the points that it passes; it knows no fault by name.
#pragma once

#include "simulator/model.h"
#include "storelib/records/request.h"

#include <cstdint>
#include <functional>
#include <map>
#include <optional>
#include <span>
#include <string>
#include <utility>
#include <vector>

namespace zebsim {

/// The points of a request's way at which a fault may act, in their order.
enum class Phase {
    kRequest, ///< in place of everything: `status` is the answer
    kHandler, ///< in place of the handler: the model stays as it is
    kModel, ///< behind the handler, before the model is saved
    kAnswer, ///< on the answer's bytes, before they are copied to the caller
    kRoom, ///< on the caller's memory, behind the copy
    kAfter, ///< the request is answered: what somebody else does before the next one
};

/// What a fault may touch at the point that a request has reached. Members that do not exist there yet are empty.
struct Stage {
    const _SL_LIB_CMD_PARAM_T& request;
    Model& model;
    std::uint32_t status = 0;
    bool changed = false; ///< the model is no longer what it was
    std::vector<std::uint8_t>* answer = nullptr;
    std::span<std::uint8_t> room{}; ///< the caller's memory, as much as the request declares
};

/// An effect; `turn` counts the requests that the fault has picked so far, from 1.
using Effect = std::function<void(Stage&, std::uint64_t turn)>;
using Effects = std::vector<std::pair<Phase, Effect>>;

struct Fault {
    std::optional<std::uint8_t> type;
    std::optional<std::uint8_t> cmd;
    std::optional<std::uint32_t> ctrl;
    std::optional<std::uint32_t> ref;
    std::optional<std::uint32_t> opcode;
    bool perRecord = false; ///< requests are counted for each controller and reference apart
    std::uint32_t nth = 0; ///< 1-based; 0 = every one
    std::uint32_t from = 0; ///< this one and all after; 0 = no lower end
    Effects effects;
    std::map<std::uint64_t, std::uint64_t> matched; ///< requests so far, by controller and reference where they count
};

/// What has struck a request: a fault or nothing. Lives no longer than the faults that it is from.
class Strike {
  public:
    Strike() = default;
    Strike(const Fault& fault, std::uint64_t turn) : fault_(&fault), turn_(turn) {}

    /// Carries out what is due at this point. True when something was.
    bool due(Phase phase, Stage& stage) const;

  private:
    const Fault* fault_ = nullptr;
    std::uint64_t turn_ = 0;
};

class Faults {
  public:
    /// Adds the faults of a JSON array. Throws ScenarioError for a bad one.
    void add(const std::string& json);

    /// Counts the request for every fault that picks it; the first one whose turn it is strikes. `opcode` is that of a
    /// controller command.
    Strike strike(const _SL_LIB_CMD_PARAM_T& request, std::optional<std::uint32_t> opcode);

  private:
    std::vector<Fault> faults_;
};

} // namespace zebsim
