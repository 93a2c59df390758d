#include "simulator/fault_effects.h"

#include <algorithm>
#include <csignal>
#include <span>

namespace zebsim {

namespace {

using Patch = std::pair<std::size_t, std::vector<std::uint8_t>>; // offset, bytes
using Codes = std::pair<std::optional<std::uint8_t>, std::optional<std::uint8_t>>; // type and command that are picked

std::uint64_t numberUnder(Reader& reader, const char* key, std::uint64_t highest) {
    std::uint64_t value = 0;
    reader.number(key, value, 0, 0, highest);
    return value;
}

void applyPatches(const std::vector<Patch>& patches, std::span<std::uint8_t> room) {
    for (const auto& [offset, bytes] : patches) {
        if (offset < room.size())
            std::copy_n(bytes.begin(), std::min(bytes.size(), room.size() - offset), room.data() + offset);
    }
}

/// SplitMix64: reproducible from its seed on every machine.
std::uint64_t nextRandom(std::uint64_t& state) {
    state += 0x9E3779B97F4A7C15;
    std::uint64_t z = state;
    z = (z ^ z >> 30) * 0xBF58476D1CE4E5B9;
    z = (z ^ z >> 27) * 0x94D049BB133111EB;
    return z ^ z >> 31;
}

void succeed(Stage& stage, std::uint64_t) {
    stage.status = 0;
}

void moveSequenceOn(Stage& stage, std::uint64_t) {
    constexpr std::uint8_t kControllerType = 0x01;
    constexpr std::uint8_t kDriveType = 0x02;
    constexpr std::uint8_t kLdType = 0x03;
    Controller* ctrl = findController(stage.model, stage.request.ctrlId);
    if (ctrl == nullptr)
        return;
    Drive* drive = findDrive(*ctrl, stage.request.ref.pdRef.deviceId);
    LogicalDrive* ld = findLd(*ctrl, stage.request.ref.ldRef.targetId);
    if (stage.request.cmdType == kControllerType)
        ++ctrl->properties.seq;
    else if (stage.request.cmdType == kDriveType && drive != nullptr)
        ++drive->seq;
    else if (stage.request.cmdType == kLdType && ld != nullptr)
        ++ld->seq;
    else
        return;
    stage.changed = true;
}

Effects readStatus(Reader& reader, const char* key, const Codes&) {
    const auto status = static_cast<std::uint32_t>(numberUnder(reader, key, 0xFFFFFFFF));
    return {{Phase::kRequest, [=](Stage& stage, std::uint64_t) { stage.status = status; }}};
}

Effects readTruncate(Reader& reader, const char* key, const Codes&) {
    const std::uint64_t length = numberUnder(reader, key, 0xFFFFFFFF);
    return {{Phase::kAnswer, [=](Stage& stage, std::uint64_t) {
                 stage.answer->resize(std::min<std::size_t>(stage.answer->size(), length));
             }}};
}

Effects readRandom(Reader& reader, const char* key, const Codes&) {
    const std::uint64_t seed = numberUnder(reader, key, UINT64_MAX);
    return {{Phase::kHandler, succeed}, {Phase::kRoom, [=](Stage& stage, std::uint64_t turn) {
                                             std::uint64_t state = seed + turn - 1;
                                             for (std::uint8_t& byte : stage.room)
                                                 byte = static_cast<std::uint8_t>(nextRandom(state) >> 56);
                                         }}};
}

Effects readFill(Reader& reader, const char* key, const Codes&) {
    const auto filler = static_cast<std::uint8_t>(numberUnder(reader, key, 0xFF));
    return {{Phase::kHandler, succeed},
            {Phase::kRoom, [=](Stage& stage, std::uint64_t) { std::ranges::fill(stage.room, filler); }}};
}

Effects patching(std::vector<Patch> patches) {
    return {{Phase::kRoom,
             [patches = std::move(patches)](Stage& stage, std::uint64_t) { applyPatches(patches, stage.room); }}};
}

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

Effects readPatch(Reader& reader, const char* key, const Codes&) {
    std::vector<Patch> patches;
    reader.objects(key, patches, 64, [](Reader& element, Patch& patch, std::size_t) {
        std::string hex;
        element.number("offset", patch.first, 0);
        element.text("hex", hex, "", 1 << 16);
        patch.second = bytesOfHex(hex, element.at("hex"));
    });
    return patching(std::move(patches));
}

/// Puts a little-endian number.
void putNumber(std::span<std::uint8_t> bytes, const Json& value, const std::string& place) {
    std::uint64_t number = unsignedOf(value, place, 0, UINT64_MAX >> (64 - 8 * bytes.size()));
    for (std::uint8_t& byte : bytes) {
        byte = static_cast<std::uint8_t>(number);
        number >>= 8;
    }
}

/// The bytes of a field that holds this value: a number, a text filled up with NULs, or a list of numbers that share
/// it.
std::vector<std::uint8_t> bytesOfField(const RecordField& field, const Json& value, const std::string& place) {
    std::vector<std::uint8_t> bytes(field.width);
    if (value.is_array()) {
        const std::size_t count = value.size();
        if (count == 0 || field.width % count != 0 || field.width / count > sizeof(std::uint64_t))
            throw ScenarioError(place, "give as many numbers as share the " + std::to_string(field.width) + " bytes");
        const std::size_t width = field.width / count;
        for (std::size_t i = 0; i < count; ++i)
            putNumber(std::span(bytes).subspan(i * width, width), value[i], place + "[" + std::to_string(i) + "]");
    } else if (field.width <= sizeof(std::uint64_t)) {
        putNumber(bytes, value, place);
    } else {
        if (!value.is_string() || value.get<std::string>().size() > field.width)
            throw ScenarioError(place, "give a text of at most " + std::to_string(field.width) + " characters");
        std::ranges::copy(bytesOfText(value.get<std::string>(), place), bytes.begin());
    }
    return bytes;
}

Effects readFields(Reader& reader, const char* key, const Codes& codes) {
    std::string text;
    reader.raw(key, text);
    const Json fields = Json::parse(text);
    const std::string known = codes.first && codes.second ? fieldNames(*codes.first, *codes.second) : "";
    if (known.empty())
        throw ScenarioError(reader.at(key),
                            "pick one kind of request whose fields have names, by \"type\" and \"cmd\"");
    if (!fields.is_object())
        throw ScenarioError(reader.at(key), "give an object, {...}");
    std::vector<Patch> patches;
    for (const auto& [name, value] : fields.items()) {
        const std::string place = reader.at(key) + "." + name;
        const std::optional<RecordField> field = findField(*codes.first, *codes.second, name);
        if (!field)
            throw ScenarioError(place, "name one of " + known);
        patches.emplace_back(field->offset, bytesOfField(*field, value, place));
    }
    return patching(std::move(patches));
}

Effects readBumpSeq(Reader& reader, const char* key, const Codes&) {
    bool wanted = false;
    reader.flag(key, wanted, false);
    if (!wanted)
        throw ScenarioError(reader.at(key), "give true, or leave it out");
    return {{Phase::kModel, moveSequenceOn}};
}

Effects readKill(Reader& reader, const char* key, const Codes&) {
    std::string when;
    reader.text(key, when, "", 6);
    if (when != "before" && when != "after")
        throw ScenarioError(reader.at(key), "give \"before\" or \"after\"");
    return {{when == "before" ? Phase::kRequest : Phase::kAfter, [](Stage&, std::uint64_t) { std::raise(SIGKILL); }}};
}

struct Action {
    const char* key;
    Effects (*read)(Reader& reader, const char* key, const Codes& codes);
};
constexpr Action kActions[] = {{"status", readStatus},   {"truncate", readTruncate}, {"random", readRandom},
                               {"fill", readFill},       {"patch", readPatch},       {"fields", readFields},
                               {"bumpSeq", readBumpSeq}, {"kill", readKill}};

std::string actionKeys() {
    std::string text;
    for (const Action& action : kActions)
        text += std::string(action.key) + ", ";
    return text;
}

} // namespace

Effects readEffects(Reader& reader, std::optional<std::uint8_t> type, std::optional<std::uint8_t> cmd) {
    Effects effects;
    std::size_t actions = 0;
    for (const Action& action : kActions) {
        if (!reader.has(action.key))
            continue;
        ++actions;
        effects = action.read(reader, action.key, {type, cmd});
    }
    const bool also = reader.has("also");
    if (also)
        readAlso(reader, effects);
    if (actions > 1 || (actions == 0 && !also))
        throw ScenarioError(reader.at("status"),
                            "give one of " + actionKeys() + "with or without \"also\", or \"also\" alone");
    return effects;
}

} // namespace zebsim
