#include "simulator/faults.h"

#include "simulator/fault_effects.h"
#include "simulator/scenario_io.h"

namespace zebsim {

namespace {

Fault readFault(const Json& node, const std::string& place) {
    Reader reader(node, place);
    Fault fault;
    reader.optionalNumber("type", fault.type, {});
    reader.optionalNumber("cmd", fault.cmd, {});
    reader.optionalNumber("ctrl", fault.ctrl, {});
    reader.optionalNumber("ref", fault.ref, {});
    reader.optionalNumber("opcode", fault.opcode, {});
    reader.flag("perRecord", fault.perRecord, false);
    reader.number("nth", fault.nth, 0, 1);
    reader.number("from", fault.from, 0, 1);
    if (fault.nth != 0 && fault.from != 0)
        throw ScenarioError(reader.at("nth"), "give either \"nth\" or \"from\"");
    fault.effects = readEffects(reader, fault.type, fault.cmd);
    reader.finish();
    return fault;
}

template <class T, class V>
bool admits(const std::optional<T>& wanted, const std::optional<V>& got) {
    return !wanted || (got && *wanted == *got);
}

bool matches(const Fault& fault, const _SL_LIB_CMD_PARAM_T& request, std::optional<std::uint32_t> opcode) {
    const std::optional<std::uint8_t> type{std::uint8_t{request.cmdType}};
    const std::optional<std::uint8_t> cmd{std::uint8_t{request.cmd}};
    const std::optional<std::uint32_t> ctrl{std::uint32_t{request.ctrlId}};
    const std::optional<std::uint32_t> ref{std::uint32_t{request.ref.all}};
    return admits(fault.type, type) && admits(fault.cmd, cmd) && admits(fault.ctrl, ctrl) && admits(fault.ref, ref) &&
           admits(fault.opcode, opcode);
}

} // namespace

bool Strike::due(Phase phase, Stage& stage) const {
    bool any = false;
    for (std::size_t i = 0; fault_ != nullptr && i < fault_->effects.size(); ++i) {
        const auto& [when, effect] = fault_->effects[i];
        if (when != phase)
            continue;
        effect(stage, turn_);
        any = true;
    }
    return any;
}

void Faults::add(const std::string& json) {
    const Json list = parsedJson(json);
    if (!list.is_array())
        throw ScenarioError("faults", "give a list, [...]");
    for (std::size_t i = 0; i < list.size(); ++i)
        faults_.push_back(readFault(list[i], "faults[" + std::to_string(i) + "]"));
}

Strike Faults::strike(const _SL_LIB_CMD_PARAM_T& request, std::optional<std::uint32_t> opcode) {
    std::optional<Strike> struck;
    const std::uint64_t record = std::uint64_t{request.ctrlId} << 32 | request.ref.all;
    for (Fault& fault : faults_) {
        if (!matches(fault, request, opcode))
            continue;
        const std::uint64_t turn = ++fault.matched[fault.perRecord ? record : 0];
        const bool due = fault.nth != 0 ? turn == fault.nth : turn >= fault.from;
        if (due && !struck)
            struck.emplace(fault, turn);
    }
    return struck.value_or(Strike{});
}

} // namespace zebsim
