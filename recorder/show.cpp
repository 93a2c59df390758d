#include "recorder/show.h"

#include <algorithm>
#include <cstdio>
#include <cstring>

namespace zebrec {

namespace {

std::string statusOf(std::uint32_t status) {
    char text[32];
    std::snprintf(text, sizeof text, "status 0x%08X", status);
    return status == 0 ? "ok" : text;
}

Request requestOf(const Line& line) {
    return Request::of(line.header,
                       line.out ? std::span<const std::uint8_t>(*line.out) : std::span<const std::uint8_t>());
}

std::string answerText(const Recording& recording, const std::optional<Answer>& answer, bool inner) {
    const Bytes* bytes = recording.answerOf(answer, inner);
    if (bytes == nullptr)
        return "";
    std::string text = ", " + std::to_string(bytes->size()) + " bytes read";
    if (answer->sameAs != 0)
        text += " (as in " + std::to_string(answer->sameAs) + ")";
    return text;
}

/// What can be seen in the text comes from a file: nothing but printable characters goes to the terminal.
std::string printable(std::string text) {
    for (char& c : text)
        if (c < ' ' || c > '~')
            c = '?';
    return text;
}

std::string lineText(const Recording& recording, const Line& line, const ControllerNumbers& controllers) {
    const Request request = requestOf(line);
    std::string text = std::to_string(line.number) + "  ";
    text += line.leftOut ? codeOf(Request{line.header, {}, {}}) + " left out"
                         : describe(request, controllers.numberOf(request.fields().ctrlId));
    if (!line.leftOut && request.effect() == Effect::kChanges)
        text += ", changes";
    text += " -> " + statusOf(line.status) + answerText(recording, line.in, false) +
            answerText(recording, line.innerIn, true);
    if (line.past != 0)
        text += ", " + std::to_string(line.past) + " bytes written behind the data";
    return text + ", " + std::to_string(line.microseconds) + " us\n";
}

void learnControllers(const Recording& recording, const Line& line, ControllerNumbers& controllers) {
    const Bytes* bytes = recording.answerOf(line.in, false);
    if (line.header[kTypeAt] != 0 || line.header[kCommandAt] != 0 || bytes == nullptr ||
        bytes->size() < sizeof(wire::_SL_CTRL_LIST_T))
        return;
    wire::_SL_CTRL_LIST_T list;
    std::memcpy(&list, bytes->data(), sizeof list);
    controllers.learn(list);
}

} // namespace

std::string leftOutLine(const std::vector<std::string>& codes, std::size_t count) {
    if (count == 0)
        return "";
    std::string text = std::to_string(count) + (count == 1 ? " request was left out: " : " requests were left out: ");
    std::vector<std::string> distinct;
    for (const std::string& code : codes)
        if (std::find(distinct.begin(), distinct.end(), code) == distinct.end())
            distinct.push_back(code);
    for (std::size_t i = 0; i < distinct.size(); ++i)
        text += (i != 0 ? ", " : "") + distinct[i];
    return text;
}

std::string showRecording(const Recording& recording) {
    const Head& head = recording.head;
    std::string text = printable("recorded by " + head.tool + " at " + head.time + ", library " +
                                 (head.library.empty() ? "of unknown version" : head.library)) +
                       (head.redacted ? ", redacted\n" : ", not redacted: every byte is in it\n");
    ControllerNumbers controllers;
    std::vector<std::string> leftOut;
    for (const Line& line : recording.lines) {
        learnControllers(recording, line, controllers);
        text += lineText(recording, line, controllers);
        if (line.leftOut)
            leftOut.push_back(codeOf(Request{line.header, {}, {}}));
    }
    text += std::to_string(recording.lines.size()) + (recording.lines.size() == 1 ? " request\n" : " requests\n");
    if (!leftOut.empty())
        text += leftOutLine(leftOut, leftOut.size()) + "\n";
    if (recording.cut)
        text += "the last line is cut and was passed over\n";
    return text;
}

} // namespace zebrec
