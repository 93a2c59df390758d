#include "recorder/redaction.h"

#include "recorder/field_kinds.h"
#include "storelib/records/all.h"
#include "storelib/records/views.h"

#include <algorithm>
#include <bit>
#include <cstring>

namespace zebrec {

namespace {

constexpr std::uint8_t kRead10 = 0x28;
constexpr std::uint8_t kLogSense = 0x4D;
constexpr std::size_t kFirstPartitionEntry = 446;

struct SipState {
    std::uint64_t v0, v1, v2, v3;
    void round() {
        v0 += v1;
        v1 = std::rotl(v1, 13) ^ v0;
        v0 = std::rotl(v0, 32);
        v2 += v3;
        v3 = std::rotl(v3, 16) ^ v2;
        v0 += v3;
        v3 = std::rotl(v3, 21) ^ v0;
        v2 += v1;
        v1 = std::rotl(v1, 17) ^ v2;
        v2 = std::rotl(v2, 32);
    }
    void take(std::uint64_t word) {
        v3 ^= word;
        round();
        round();
        v0 ^= word;
    }
};

std::uint64_t numberAt(std::span<const std::uint8_t> bytes) {
    std::uint64_t number = 0;
    std::memcpy(&number, bytes.data(), std::min(bytes.size(), sizeof number));
    return number;
}

void zero(std::span<std::uint8_t> bytes) {
    std::fill(bytes.begin(), bytes.end(), std::uint8_t{0});
}

/// One pass through a Feistel network of four rounds over both halves of the number.
std::uint64_t feistel(const RedactionKey& key, std::uint64_t number, unsigned halfBits) {
    const std::uint64_t mask = (std::uint64_t{1} << halfBits) - 1;
    std::uint64_t left = number >> halfBits;
    std::uint64_t right = number & mask;
    for (std::uint8_t round = 0; round < 4; ++round) {
        std::array<std::uint8_t, 10> input{round, static_cast<std::uint8_t>(halfBits)};
        std::memcpy(input.data() + 2, &right, sizeof right);
        const std::uint64_t next = left ^ (keyedHash(key, input) & mask);
        left = right;
        right = next;
    }
    return left << halfBits | right;
}

} // namespace

std::uint64_t keyedHash(const RedactionKey& key, std::span<const std::uint8_t> bytes) {
    SipState state{key[0] ^ 0x736f6d6570736575U, key[1] ^ 0x646f72616e646f6dU, key[0] ^ 0x6c7967656e657261U,
                   key[1] ^ 0x7465646279746573U};
    const std::size_t length = bytes.size();
    for (; bytes.size() >= 8; bytes = bytes.subspan(8))
        state.take(numberAt(bytes));
    state.take(numberAt(bytes) | static_cast<std::uint64_t>(length) << 56U);
    state.v2 ^= 0xFFU;
    for (int i = 0; i < 4; ++i)
        state.round();
    return state.v0 ^ state.v1 ^ state.v2 ^ state.v3;
}

std::uint64_t permuted(const RedactionKey& key, std::uint64_t number, std::size_t width) {
    const auto halfBits = static_cast<unsigned>(width * 4);
    const std::uint64_t allOnes = ~std::uint64_t{0} >> (64 - width * 8);
    if (number == 0 || number == allOnes)
        return number;
    do // walk on while the permutation leads to a number that stands for itself
        number = feistel(key, number, halfBits);
    while (number == 0 || number == allOnes);
    return number;
}

void Redaction::replaceNumbers(std::span<std::uint8_t> bytes, std::size_t width) const {
    for (; bytes.size() >= width; bytes = bytes.subspan(width)) {
        const std::uint64_t number = key_ == nullptr ? 0 : permuted(*key_, numberAt(bytes.first(width)), width);
        std::memcpy(bytes.data(), &number, width);
    }
}

void Redaction::writeStandIn(Bytes original, std::span<std::uint8_t> room) const {
    constexpr char kLetters[] = "ABCDEFGHIJKLMNOPQRSTUVWXYZ234567"; // base 32 (RFC 4648)
    constexpr std::size_t kWord = 16; // 80 bits
    std::uint64_t hash = keyedHash(*key_, original);
    original.push_back(1);
    std::uint64_t more = keyedHash(*key_, original);
    for (std::size_t i = 0; i < std::min(kWord, room.size()); ++i) {
        std::uint64_t& from = i % 2 == 0 ? hash : more;
        room[i] = static_cast<std::uint8_t>(kLetters[from & 31U]);
        from >>= 5U;
    }
}

void Redaction::replaceText(std::span<std::uint8_t> bytes) const {
    const auto allOnes = [](std::uint8_t byte) { return byte == 0xFF; };
    if (bytes.empty() || (key_ != nullptr && std::all_of(bytes.begin(), bytes.end(), allOnes)))
        return;
    const auto end = std::find(bytes.begin(), bytes.end(), std::uint8_t{0});
    Bytes original(bytes.begin(), end);
    zero(bytes);
    if (key_ == nullptr)
        return;
    // Blanks name nothing, and a text of nothing else is told apart from one that says something.
    if (std::all_of(original.begin(), original.end(), [](std::uint8_t byte) { return byte == ' '; }))
        std::copy(original.begin(), original.end(), bytes.begin());
    else
        writeStandIn(original, bytes);
}

void Redaction::applyRecord(const wire::RecordLayout& layout, std::span<std::uint8_t> bytes) const {
    std::size_t done = 0;
    for (const FieldPiece& piece : piecesOf(layout)) {
        if (piece.offset + piece.size > bytes.size())
            break;
        zero(bytes.subspan(done, piece.offset - done));
        const auto field = bytes.subspan(piece.offset, piece.size);
        done = piece.offset + piece.size;
        if (piece.kind == FieldKind::kAddress)
            replaceNumbers(field, sizeof(std::uint64_t));
        if (piece.kind == FieldKind::kSerialNumber)
            replaceNumbers(field, sizeof(std::uint16_t));
        if (piece.kind == FieldKind::kText)
            replaceText(field);
    }
    zero(bytes.subspan(done));
}

void Redaction::applyConfiguration(std::span<std::uint8_t> bytes) const {
    if (bytes.size() < sizeof(wire::_MR_CONFIG_DATA))
        return zero(bytes);
    auto* config = reinterpret_cast<wire::_MR_CONFIG_DATA*>(bytes.data());
    std::size_t done = sizeof *config;
    const auto section = [&](auto records) {
        for (auto& record : records) {
            using Record = std::remove_reference_t<decltype(record)>;
            applyRecord(wire::Layout<Record>::kRecord, {reinterpret_cast<std::uint8_t*>(&record), sizeof record});
            done += sizeof record;
        }
    };
    section(arraysOf(config, bytes.size()));
    section(ldsOf(config, bytes.size()));
    section(sparesOf(config, bytes.size()));
    zero(bytes.subspan(done));
    applyRecord(wire::Layout<wire::_MR_CONFIG_DATA>::kRecord, bytes.first(sizeof *config));
}

bool Redaction::applyScsi(std::span<std::uint8_t> bytes) const {
    wire::_SL_SCSI_PASSTHRU_T head;
    std::memcpy(&head, bytes.data(), sizeof head);
    const auto data = bytes.subspan(sizeof head);
    const bool bootSector =
        head.cdb[0] == kRead10 && std::all_of(head.cdb + 2, head.cdb + 6, [](auto b) { return b == 0; });
    constexpr std::uint8_t kPageCode = 0x3F;
    constexpr std::uint8_t kTemperature = 0x0D;
    const unsigned page = head.cdb[2] & kPageCode;
    const bool harmlessPage = head.cdb[0] == kLogSense && (page == 0 || page == kTemperature);
    if (!bootSector && !harmlessPage)
        return false;
    if (bootSector)
        zero(data.first(std::min(data.size(), kFirstPartitionEntry)));
    if (bootSector && data.size() > 512)
        zero(data.subspan(512));
    applyRecord(wire::Layout<wire::_SL_SCSI_PASSTHRU_T>::kRecord, bytes.first(sizeof head));
    return true;
}

bool Redaction::apply(Data data, std::span<std::uint8_t> bytes) const {
    switch (data.shape) {
    case Shape::kUnknown:
        return false;
    case Shape::kNone:
        zero(bytes);
        break;
    case Shape::kRecord:
        applyRecord(*data.layout, bytes);
        break;
    case Shape::kConfiguration:
        applyConfiguration(bytes);
        break;
    case Shape::kNumber:
    case Shape::kSized:
        zero(bytes.subspan(std::min(bytes.size(), sizeof(std::uint32_t))));
        break;
    case Shape::kControllerCommand:
        applyRecord(wire::Layout<wire::_SL_DCMD_INPUT_T>::kRecord, bytes);
        break;
    case Shape::kScsi:
        return applyScsi(bytes);
    }
    return true;
}

} // namespace zebrec
