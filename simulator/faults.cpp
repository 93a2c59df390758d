#include "simulator/faults.h"

#include "simulator/scenario_io.h"

#include <algorithm>
#include <cstring>

namespace zebsim {

namespace {

std::vector<std::uint8_t> bytesOfHex(const std::string& text, const std::string& place) {
    std::vector<std::uint8_t> bytes(text.size() / 2);
    const Json node = Json{{"hex", text}};
    try {
        Reader reader(node, "");
        const std::vector<std::uint8_t> none(bytes.size());
        reader.bytes("hex", bytes.data(), none.data(), bytes.size());
    } catch (const ScenarioError&) {
        throw ScenarioError(place, "give an even number of hexadecimal digits");
    }
    return bytes;
}

void readPatches(Reader& reader, Fault& fault) {
    reader.objects("patch", fault.patches, 64, [](Reader& element, Fault::Patch& patch, std::size_t) {
        std::string hex;
        element.number("offset", patch.first, 0);
        element.text("hex", hex, "", 1 << 16);
        patch.second = bytesOfHex(hex, element.at("hex"));
    });
}

void readAction(Reader& reader, Fault& fault) {
    struct Named {
        const char* key;
        Fault::Action action;
        std::uint64_t highest;
    };
    static constexpr Named kActions[] = {{"status", Fault::Action::kStatus, 0xFFFFFFFF},
                                         {"truncate", Fault::Action::kTruncate, 0xFFFFFFFF},
                                         {"random", Fault::Action::kRandom, UINT64_MAX},
                                         {"fill", Fault::Action::kFill, 0xFF},
                                         {"patch", Fault::Action::kPatch, 0},
                                         {"bumpSeq", Fault::Action::kBumpSeq, 0}};
    std::size_t found = 0;
    for (const Named& named : kActions) {
        if (!reader.has(named.key))
            continue;
        ++found;
        fault.action = named.action;
        if (named.highest != 0)
            reader.number(named.key, fault.value, 0, 0, named.highest);
    }
    bool bump = false;
    reader.flag("bumpSeq", bump, false);
    readPatches(reader, fault);
    if (found != 1 || (fault.action == Fault::Action::kBumpSeq && !bump))
        throw ScenarioError(reader.at("status"),
                            "give exactly one of status, truncate, random, fill, patch, \"bumpSeq\": true");
}

Fault readFault(const Json& node, const std::string& place) {
    Reader reader(node, place);
    Fault fault;
    reader.optionalNumber("type", fault.type, {});
    reader.optionalNumber("cmd", fault.cmd, {});
    reader.optionalNumber("ctrl", fault.ctrl, {});
    reader.optionalNumber("ref", fault.ref, {});
    reader.optionalNumber("opcode", fault.opcode, {});
    reader.number("nth", fault.nth, 0, 1);
    reader.number("from", fault.from, 0, 1);
    if (fault.nth != 0 && fault.from != 0)
        throw ScenarioError(reader.at("nth"), "give either \"nth\" or \"from\"");
    readAction(reader, fault);
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

/// SplitMix64: reproducible from its seed on every machine.
std::uint64_t nextRandom(std::uint64_t& state) {
    state += 0x9E3779B97F4A7C15;
    std::uint64_t z = state;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
    z = (z ^ z >> 27) * 0x94D049BB133111EB;
    return z ^ z >> 31;
}

} // namespace

void Faults::add(const std::string& json) {
    const Json list = parsedJson(json);
    if (!list.is_array())
        throw ScenarioError("faults", "give a list, [...]");
    for (std::size_t i = 0; i < list.size(); ++i)
        faults_.push_back(readFault(list[i], "faults[" + std::to_string(i) + "]"));
}

const Fault* Faults::strike(const _SL_LIB_CMD_PARAM_T& request, std::optional<std::uint32_t> opcode) {
    const Fault* struck = nullptr;
    for (Fault& fault : faults_) {
        if (!matches(fault, request, opcode))
            continue;
        ++fault.matched;
        const bool due = fault.nth != 0 ? fault.matched == fault.nth : fault.matched >= fault.from;
        if (due && struck == nullptr)
            struck = &fault;
    }
    return struck;
}

void applyToReply(const Fault& fault, std::span<std::uint8_t> room) {
    if (fault.action == Fault::Action::kFill)
        std::fill(room.begin(), room.end(), static_cast<std::uint8_t>(fault.value));
    if (fault.action == Fault::Action::kRandom) {
        std::uint64_t state = fault.value + fault.matched - 1;
        std::generate(room.begin(), room.end(), [&] { return static_cast<std::uint8_t>(nextRandom(state) >> 56); });
    }
    for (const auto& [offset, bytes] : fault.patches) {
        if (offset < room.size())
            std::copy_n(bytes.begin(), std::min(bytes.size(), room.size() - offset), room.begin() + offset);
    }
}

} // namespace zebsim
