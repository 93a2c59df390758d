// A buffer that a library may write to, with a guard behind it in which writing past the end shows.
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace zebrec {

/// The bytes with which untouched memory is filled: no two neighbours are alike, none is zero.
constexpr std::uint8_t patternByte(std::size_t index) {
    return static_cast<std::uint8_t>(0xA5U ^ (index % 89));
}

class GuardedBuffer {
  public:
    GuardedBuffer() = default;
    ~GuardedBuffer();
    GuardedBuffer(const GuardedBuffer&) = delete;
    GuardedBuffer& operator=(const GuardedBuffer&) = delete;

    /// Makes the buffer a copy of the bytes and the guard whole. False when there is no memory.
    bool fill(std::span<const std::uint8_t> bytes);

    std::span<std::uint8_t> bytes() const { return {begin_, size_}; }

    /// How many bytes behind the end were written, up to the last one that changed. 0: none.
    std::size_t writtenPast() const;

    static constexpr std::size_t kGuard = 16384; ///< bytes; what lies behind them cannot be written at all

  private:
    void release();

    std::uint8_t* begin_ = nullptr;
    std::size_t size_ = 0;
    std::size_t room_ = 0;
};

} // namespace zebrec
