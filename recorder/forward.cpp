#include "recorder/forward.h"

#include <algorithm>
#include <chrono>
#include <cstring>

namespace zebrec {

namespace {

std::span<const std::uint8_t> callersBytes(const void* data, std::uint32_t size) {
    return {static_cast<const std::uint8_t*>(data), data == nullptr ? 0U : size};
}

void copyTo(void* target, std::span<const std::uint8_t> bytes) {
    if (target != nullptr && !bytes.empty())
        std::memcpy(target, bytes.data(), bytes.size());
}

constexpr std::size_t kInnerPointer = sizeof(wire::_SL_DCMD_INPUT_T) - sizeof(void*);

} // namespace

bool Forwarder::prepare(const wire::_SL_LIB_CMD_PARAM_T& request) {
    exchange_.past = 0;
    const auto data = callersBytes(request.data, request.dataSize);
    Header header;
    std::memcpy(header.data(), &request, header.size());
    exchange_.request = Request::of(header, data);
    exchange_.dataBefore.assign(data.begin(), data.end());
    exchange_.innerBefore.clear();
    exchange_.microseconds = 0;
    exchange_.status = 0;
    innerOfCaller_ = nullptr;
    exchange_.hasInner = exchange_.request.dcmd.has_value();
    if (exchange_.hasInner) {
        std::memcpy(&innerOfCaller_, data.data() + kInnerPointer, sizeof innerOfCaller_);
        const auto inner = callersBytes(innerOfCaller_, exchange_.request.dcmd->dataSize);
        exchange_.innerBefore.assign(inner.begin(), inner.end());
        std::fill_n(exchange_.dataBefore.begin() + kInnerPointer, sizeof(void*), std::uint8_t{0});
    }
    std::array<std::uint8_t, sizeof request> whole;
    std::memcpy(whole.data(), &request, whole.size());
    if (!header_.fill(whole) || !data_.fill(data) || !inner_.fill(exchange_.innerBefore))
        return false;
    exchange_.dataAfter = exchange_.dataBefore;
    exchange_.innerAfter = exchange_.innerBefore;
    return true;
}

const Exchange& Forwarder::send(EntryPoint entry, wire::_SL_LIB_CMD_PARAM_T& request) {
    auto* own = reinterpret_cast<wire::_SL_LIB_CMD_PARAM_T*>(header_.bytes().data());
    if (request.data != nullptr)
        own->data = data_.bytes().data();
    if (exchange_.hasInner && innerOfCaller_ != nullptr) {
        void* inner = inner_.bytes().data();
        std::memcpy(data_.bytes().data() + kInnerPointer, &inner, sizeof inner);
    }
    const auto start = std::chrono::steady_clock::now();
    exchange_.status = entry(own);
    const auto took = std::chrono::steady_clock::now() - start;
    exchange_.microseconds =
        static_cast<std::uint64_t>(std::chrono::duration_cast<std::chrono::microseconds>(took).count());
    exchange_.past = std::max({header_.writtenPast(), data_.writtenPast(), inner_.writtenPast()});
    giveBack(request);
    return exchange_;
}

void Forwarder::giveBack(wire::_SL_LIB_CMD_PARAM_T& request) {
    copyTo(&request, header_.bytes().first(kHeaderSize));
    const auto data = data_.bytes();
    if (exchange_.hasInner) {
        std::memcpy(data.data() + kInnerPointer, &innerOfCaller_, sizeof innerOfCaller_);
        copyTo(innerOfCaller_, inner_.bytes());
    }
    if (request.data != nullptr)
        copyTo(request.data, data);
    if (exchange_.hasInner)
        std::memset(data.data() + kInnerPointer, 0, sizeof(void*));
    exchange_.dataAfter = data;
    exchange_.innerAfter = inner_.bytes();
}

} // namespace zebrec
