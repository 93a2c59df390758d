#include "fuzz/support.h"

#include <algorithm>
#include <array>
#include <cstdarg>
#include <cstdlib>
#include <cstring>
#include <syslog.h>
#include <unistd.h>

namespace {

constexpr std::size_t kLongestArgument = 256;

struct ByteStream {
    fuzz::Bytes bytes;
    std::string_view tail;
    std::size_t inTail = 0;
    bool ended = false;
};

ssize_t readStream(void* cookie, char* out, std::size_t size) {
    auto& stream = *static_cast<ByteStream*>(cookie);
    std::size_t length = std::min(size, stream.bytes.size());
    std::copy_n(stream.bytes.begin(), length, out);
    stream.bytes = stream.bytes.subspan(length);
    if (stream.ended && !stream.tail.empty())
        for (; length < size; ++length)
            out[length] = stream.tail[stream.inTail++ % stream.tail.size()];
    stream.ended = stream.ended || length == 0;
    return static_cast<ssize_t>(length);
}

int closeStream(void* cookie) {
    delete static_cast<ByteStream*>(cookie);
    return 0;
}

} // namespace

namespace fuzz {

std::uint8_t Input::byte() {
    const Bytes one = take(1);
    return one.empty() ? std::uint8_t{0} : one.front();
}

Bytes Input::take(std::size_t count) {
    const Bytes taken = rest_.first(std::min(count, rest_.size()));
    rest_ = rest_.subspan(taken.size());
    return taken;
}

Bytes Input::takeUntil(std::uint8_t end) {
    const auto length = static_cast<std::size_t>(std::find(rest_.begin(), rest_.end(), end) - rest_.begin());
    const Bytes taken = take(length);
    take(1);
    return taken;
}

void require(bool holds, const char* statement) {
    if (holds)
        return;
    std::fprintf(stderr, "does not hold: %s\n", statement);
    std::abort();
}

File openBytes(Bytes bytes, std::string_view tail) {
    auto stream = std::make_unique<ByteStream>(ByteStream{bytes, tail});
    File file(fopencookie(stream.get(), "r", {readStream, nullptr, nullptr, closeStream}), std::fclose);
    if (!file)
        std::abort();
    stream.release(); // closeStream's now
    return file;
}

void typeAnswers(Bytes bytes) {
    static File typed(nullptr, std::fclose);
    typed = openBytes(bytes, "\nN\nQ\n");
    stdin = typed.get();
}

CommandLine::CommandLine(Bytes text) : words_{"zebcli"} {
    for (Input input(text.data(), text.size()); !input.rest().empty();)
        if (const std::string word = textOf(input.takeUntil(' ')); !word.empty())
            words_.push_back(std::string(word.c_str()).substr(0, kLongestArgument));
    for (std::string& word : words_)
        pointers_.push_back(word.data());
    pointers_.push_back(nullptr);
}

} // namespace fuzz

// These stand in for the routines of the C library: nothing of a run reaches the system log, and no run waits.
void syslog(int, const char* format, ...) {
    std::array<char, 4096> line;
    va_list args;
    va_start(args, format);
    std::vsnprintf(line.data(), line.size(), format, args);
    va_end(args);
}
int usleep(useconds_t) {
    return 0;
}

extern "C" int LLVMFuzzerInitialize(int*, char***);
int LLVMFuzzerInitialize(int*, char***) {
    const bool silent = std::freopen("/dev/null", "w", stdout) != nullptr;
    return silent && std::freopen("/dev/null", "r", stdin) != nullptr ? 0 : 1;
}
