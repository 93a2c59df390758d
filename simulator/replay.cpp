#include "simulator/replay.h"

#include "recorder/redaction.h"
#include "recorder/request.h"
#include "simulator/call.h"

#include <algorithm>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <map>
#include <string>

namespace zebsim {

namespace {

using zebrec::Bytes;
using zebrec::Request;

constexpr std::size_t kInnerPointer = offsetof(_SL_DCMD_INPUT_T, data);

/// What must agree: the header and what goes out, identifying fields erased.
std::string keyOf(const Request& request, Bytes out, Bytes innerOut) {
    const zebrec::Redaction erasing = zebrec::Redaction::erasing();
    if (!out.empty())
        erasing.apply(request.data(), out);
    if (!innerOut.empty())
        erasing.apply(request.innerData(), innerOut);
    std::string key(request.header.begin(), request.header.end());
    key.append(out.begin(), out.end()).append(1, ':').append(innerOut.begin(), innerOut.end());
    return key;
}

std::string keyOf(const zebrec::Line& line) {
    const Bytes out = line.out.value_or(Bytes{});
    return keyOf(Request::of(line.header, out), out, line.innerOut.value_or(Bytes{}));
}

Bytes bytesAt(const void* data, std::uint32_t size) {
    const auto* first = static_cast<const std::uint8_t*>(data);
    return data == nullptr ? Bytes{} : Bytes(first, first + size);
}

void give(void* target, std::uint32_t room, const Bytes* bytes) {
    if (target != nullptr && bytes != nullptr)
        std::copy_n(bytes->begin(), std::min<std::size_t>(room, bytes->size()), static_cast<std::uint8_t*>(target));
}

/// A request of the tool, its pass-through data apart.
struct Live {
    Request request;
    Bytes out;
    Bytes innerOut;
    void* inner = nullptr;
    std::uint32_t innerSize = 0;
};

Live liveOf(const _SL_LIB_CMD_PARAM_T& request) {
    zebrec::Header header;
    std::memcpy(header.data(), &request, header.size());
    Live live;
    Bytes data = bytesAt(request.data, request.dataSize);
    live.request = Request::of(header, data);
    if (live.request.dcmd) {
        std::memcpy(&live.inner, data.data() + kInnerPointer, sizeof live.inner);
        std::fill_n(data.begin() + kInnerPointer, sizeof live.inner, std::uint8_t{0});
        live.innerSize = live.request.dcmd->dataSize;
        if ((live.request.dcmd->direction & kDcmdToController) != 0)
            live.innerOut = bytesAt(live.inner, live.innerSize);
    }
    if (live.request.sends())
        live.out = std::move(data);
    return live;
}

} // namespace

struct Replay::Content {
    struct Answers {
        std::vector<std::size_t> lines;
        std::size_t given = 0;
    };

    bool usable = false;
    bool aloud = false; ///< says at its end what was never recorded
    zebrec::Recording recording;
    std::map<std::string, Answers> answers;
    zebrec::ControllerNumbers controllers;
    std::vector<std::string> unknown;

    void load(const char* path);
    void take(zebrec::Recording read);
    std::uint32_t answer(const _SL_LIB_CMD_PARAM_T& request);
    void sayUnknown() const;
};

void Replay::Content::load(const char* path) {
    std::string reason;
    auto read = zebrec::readRecordingFile(path, reason);
    if (!read) {
        std::fprintf(stderr, "ZEBSIM_REPLAY: %s: %s\n", path, reason.c_str());
        return;
    }
    aloud = true;
    take(std::move(*read));
}

void Replay::Content::take(zebrec::Recording read) {
    usable = true;
    recording = std::move(read);
    for (std::size_t i = 0; i < recording.lines.size(); ++i)
        if (!recording.lines[i].leftOut)
            answers[keyOf(recording.lines[i])].lines.push_back(i);
}

std::uint32_t Replay::Content::answer(const _SL_LIB_CMD_PARAM_T& request) {
    if (!usable)
        return kInitFailed;
    const Live live = liveOf(request);
    const auto found = answers.find(keyOf(live.request, live.out, live.innerOut));
    if (found == answers.end()) {
        std::string text = describe(live.request, controllers.numberOf(request.ctrlId));
        if (std::find(unknown.begin(), unknown.end(), text) == unknown.end())
            unknown.push_back(std::move(text));
        return kInvalidCommand;
    }
    Answers& same = found->second;
    const zebrec::Line& line = recording.lines[same.lines[std::min(same.given, same.lines.size() - 1)]];
    ++same.given;
    if (live.inner != nullptr)
        give(live.inner, live.innerSize, recording.answerOf(line.innerIn, true));
    if (const Bytes* own = recording.answerOf(line.in, false)) {
        give(request.data, request.dataSize, own);
        if (live.request.dcmd)
            std::memcpy(static_cast<std::uint8_t*>(request.data) + kInnerPointer, &live.inner, sizeof live.inner);
    }
    constexpr std::uint8_t kLibraryType = 0;
    if (line.status == kSuccess && request.cmdType == kLibraryType && request.cmd == 0 && request.data != nullptr &&
        request.dataSize >= sizeof(_SL_CTRL_LIST_T)) {
        _SL_CTRL_LIST_T list;
        std::memcpy(&list, request.data, sizeof list);
        controllers.learn(list);
    }
    return line.status;
}

void Replay::Content::sayUnknown() const {
    for (const std::string& text : unknown)
        std::fprintf(stderr, "never recorded: %s\n", text.c_str());
}

Replay::Replay(std::unique_ptr<Content> content) : content_(std::move(content)) {}

Replay::~Replay() {
    if (content_->aloud)
        content_->sayUnknown();
}

Replay* Replay::fromEnvironment() {
    static const std::unique_ptr<Replay> replay = [] {
        const char* path = std::getenv("ZEBSIM_REPLAY");
        if (path == nullptr || *path == '\0')
            return std::unique_ptr<Replay>();
        auto content = std::make_unique<Content>();
        content->load(path);
        return std::unique_ptr<Replay>(new Replay(std::move(content)));
    }();
    return replay.get();
}

std::unique_ptr<Replay> Replay::of(zebrec::Recording recording) {
    auto content = std::make_unique<Content>();
    content->take(std::move(recording));
    return std::unique_ptr<Replay>(new Replay(std::move(content)));
}

std::uint32_t Replay::answer(const _SL_LIB_CMD_PARAM_T& request) {
    return content_->answer(request);
}

} // namespace zebsim
