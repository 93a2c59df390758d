#include "recorder/guarded_buffer.h"

#include <array>
#include <cstring>
#include <sys/mman.h>

namespace zebrec {

namespace {

constexpr std::size_t kPage = 4096;

const std::array<std::uint8_t, GuardedBuffer::kGuard>& pattern() {
    static const auto bytes = [] {
        std::array<std::uint8_t, GuardedBuffer::kGuard> made{};
        for (std::size_t i = 0; i < made.size(); ++i)
            made[i] = patternByte(i);
        return made;
    }();
    return bytes;
}

} // namespace

GuardedBuffer::~GuardedBuffer() {
    release();
}

void GuardedBuffer::release() {
    if (begin_ != nullptr)
        ::munmap(begin_, room_ + kPage);
    begin_ = nullptr;
    size_ = room_ = 0;
}

bool GuardedBuffer::fill(std::span<const std::uint8_t> bytes) {
    const std::size_t needed = (bytes.size() + kGuard + kPage - 1) / kPage * kPage;
    if (needed > room_) {
        release();
        void* memory = ::mmap(nullptr, needed + kPage, PROT_READ | PROT_WRITE, MAP_PRIVATE | MAP_ANONYMOUS, -1, 0);
        if (memory == MAP_FAILED)
            return false;
        begin_ = static_cast<std::uint8_t*>(memory);
        room_ = needed;
        if (::mprotect(begin_ + room_, kPage, PROT_NONE) != 0)
            return false;
    }
    size_ = bytes.size();
    if (!bytes.empty())
        std::memcpy(begin_, bytes.data(), bytes.size());
    std::memcpy(begin_ + size_, pattern().data(), kGuard);
    return true;
}

std::size_t GuardedBuffer::writtenPast() const {
    const std::uint8_t* guard = begin_ + size_;
    if (std::memcmp(guard, pattern().data(), kGuard) == 0)
        return 0;
    std::size_t past = kGuard;
    while (guard[past - 1] == pattern()[past - 1])
        --past;
    return past;
}

} // namespace zebrec
