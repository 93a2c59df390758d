// A list of values with room for N of them, without the heap.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <functional>
#include <span>

template <class T, std::size_t N>
class BoundedList {
  public:
    /// Appends a value; one that finds no room is dropped.
    void add(const T& value) {
        if (count_ < N)
            values_[count_++] = value;
    }
    void clear() { count_ = 0; }
    /// Drops the values that do not pass; the others keep their order.
    template <class Test>
    void keepIf(Test test) {
        count_ = static_cast<std::size_t>(std::remove_if(begin(), end(), std::not_fn(test)) - begin());
    }

    std::size_t size() const { return count_; }
    bool empty() const { return count_ == 0; }
    T& operator[](std::size_t i) { return values_[i]; }
    const T& operator[](std::size_t i) const { return values_[i]; }
    T* begin() { return values_.data(); }
    T* end() { return values_.data() + count_; }
    const T* begin() const { return values_.data(); }
    const T* end() const { return values_.data() + count_; }
    std::span<const T> list() const& { return {begin(), count_}; }
    std::span<const T> list() const&& = delete; // it would outlive its values

    bool contains(const T& value) const { return std::find(begin(), end(), value) != end(); }
    bool operator==(const BoundedList& other) const { return std::equal(begin(), end(), other.begin(), other.end()); }

  private:
    std::array<T, N> values_{};
    std::size_t count_ = 0;
};
