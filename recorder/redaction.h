// Takes out of a request's bytes what names a machine: by field of the known records.
#pragma once

#include "recorder/request.h"

#include <array>
#include <cstdint>
#include <span>

namespace zebrec {

/// The secret of one recording. It is never written down, so that nobody can try out originals.
using RedactionKey = std::array<std::uint64_t, 2>;

/// What happens to identifying fields. Bytes of a known record that no field covers become zero with either.
class Redaction {
  public:
    /// Each original becomes the same word of the same width: numbers by a permutation, so that two of them never
    /// meet; 0 and all ones stay.
    static Redaction replacing(const RedactionKey& key) { return Redaction(&key); }
    /// They become zero, for comparing requests.
    static Redaction erasing() { return Redaction(nullptr); }

    /// Redacts data in place. False when nobody knows what identifies something in it: it must not be kept.
    bool apply(Data data, std::span<std::uint8_t> bytes) const;

  private:
    explicit Redaction(const RedactionKey* key) : key_(key) {}
    void applyRecord(const wire::RecordLayout& layout, std::span<std::uint8_t> bytes) const;
    void applyConfiguration(std::span<std::uint8_t> bytes) const;
    bool applyScsi(std::span<std::uint8_t> bytes) const;
    void replaceNumbers(std::span<std::uint8_t> bytes, std::size_t width) const;
    void replaceText(std::span<std::uint8_t> bytes) const;
    /// Writes the 16 letters that stand for a text, or as many as there is room for.
    void writeStandIn(Bytes original, std::span<std::uint8_t> room) const;

    const RedactionKey* key_;
};

/// SipHash-2-4 of the bytes.
std::uint64_t keyedHash(const RedactionKey& key, std::span<const std::uint8_t> bytes);

/// A permutation of the numbers of that many bytes (2 or 8) in which 0 and all ones stay.
std::uint64_t permuted(const RedactionKey& key, std::uint64_t number, std::size_t width);

} // namespace zebrec
