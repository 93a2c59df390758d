#include "recorder/line_writer.h"

#include "recorder/write_whole.h"

#include <algorithm>
#include <cerrno>
#include <fcntl.h>
#include <unistd.h>

namespace zebrec {

namespace {

constexpr std::size_t kShortestRepeat = 16; ///< bytes of an answer that are worth a look for the same one
constexpr std::size_t kMostKept = 64U << 20U; ///< bytes of answers that are kept for that

std::string keyOf(const Data& data, std::span<const std::uint8_t> bytes) {
    std::string key(1, static_cast<char>(data.shape));
    key += data.layout != nullptr ? data.layout->name : "";
    key.append(reinterpret_cast<const char*>(bytes.data()), bytes.size());
    return key;
}

} // namespace

LineWriter::LineWriter(SessionPage& page, const char* path)
    : page_(page), file_(::open(path, O_WRONLY | O_APPEND | O_CLOEXEC)) {
    if (file_ < 0)
        stop(errno);
}

LineWriter::~LineWriter() {
    if (file_ >= 0)
        ::close(file_);
}

bool LineWriter::fillOut(std::optional<Bytes>& out, Data data, std::span<const std::uint8_t> bytes) const {
    out.emplace(bytes.begin(), bytes.end());
    return !page_.redacted || Redaction::replacing(page_.key).apply(data, *out);
}

bool LineWriter::fillIn(std::optional<Answer>& in, Data data, std::span<const std::uint8_t> bytes, Known& known,
                        std::uint64_t number) {
    in.emplace();
    const bool worth = bytes.size() >= kShortestRepeat && keptBytes_ + bytes.size() <= kMostKept;
    std::string key = worth ? keyOf(data, bytes) : std::string();
    if (const auto place = known.find(key); place != known.end()) {
        in->sameAs = place->second;
        return true;
    }
    in->bytes.assign(bytes.begin(), bytes.end());
    if (page_.redacted && !Redaction::replacing(page_.key).apply(data, in->bytes))
        return false;
    if (worth) {
        keptBytes_ += key.size();
        known.emplace(std::move(key), number);
    }
    return true;
}

/// Fills in the bytes. False when they must not be kept.
bool LineWriter::fill(Line& line, const Exchange& exchange) {
    const Request& request = exchange.request;
    const Data data = request.data();
    const Data inner = request.innerData();
    // What is unknown is left out as a whole, its header and its status included, however short its data.
    const bool unknown = data.shape == Shape::kUnknown || (exchange.hasInner && inner.shape == Shape::kUnknown);
    if (page_.redacted && unknown)
        return false;
    const bool reads = request.effect() == Effect::kReads;
    bool kept = true;
    const auto changed = [](const Bytes& before, std::span<const std::uint8_t> after) {
        return !std::equal(before.begin(), before.end(), after.begin(), after.end());
    };
    if (request.sends() && !exchange.dataBefore.empty())
        kept = fillOut(line.out, data, exchange.dataBefore);
    const bool ownAnswer = reads && !exchange.hasInner && exchange.status == 0 && !exchange.dataAfter.empty();
    if (kept && (ownAnswer || changed(exchange.dataBefore, exchange.dataAfter)))
        kept = fillIn(line.in, data, exchange.dataAfter, known_, line.number);
    if (!exchange.hasInner || !kept)
        return kept;
    if ((request.dcmd->direction & wire::kDcmdToController) != 0 && !exchange.innerBefore.empty())
        kept = fillOut(line.innerOut, inner, exchange.innerBefore);
    const bool innerAnswer = reads && exchange.status == 0 && !exchange.innerAfter.empty();
    if (kept && (innerAnswer || changed(exchange.innerBefore, exchange.innerAfter)))
        kept = fillIn(line.innerIn, inner, exchange.innerAfter, knownInner_, line.number);
    return kept;
}

void LineWriter::write(const Exchange& exchange, std::uint64_t number, std::optional<unsigned> contNo) {
    if (file_ < 0 || page_.stopped != 0)
        return;
    Line line;
    line.number = number;
    line.microseconds = exchange.microseconds;
    line.header = exchange.request.header;
    line.past = exchange.past;
    line.status = exchange.status;
    if (!fill(line, exchange)) {
        line.leftOut = true;
        page_.leftOut.add(mentionOf(exchange.request, contNo, number));
    }
    append(writeLine(line));
}

void LineWriter::append(const std::string& text) {
    if (const int failure = writeWhole(file_, text); failure != 0)
        stop(failure);
}

void LineWriter::stop(int why) {
    int none = 0;
    page_.stopped.compare_exchange_strong(none, why);
}

} // namespace zebrec
