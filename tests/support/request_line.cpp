// A request as a line of text, the records that go out with it by their fields.
#include <algorithm>
#include <cctype>
#include <cstdarg>
#include <cstdio>

#include "storelib/records/all.h"
#include "tests/support/kept_block.h"
#include "tests/support/operation_test.h"

namespace zebtest {
namespace {

[[gnu::format(printf, 1, 2)]] std::string formatted(const char* format, ...) {
    char text[512];
    va_list args;
    va_start(args, format);
    std::vsnprintf(text, sizeof text, format, args);
    va_end(args);
    return text;
}

using Data = std::span<const std::uint8_t>;

std::string hexOf(Data bytes) {
    std::string text;
    for (const std::uint8_t byte : bytes)
        text += formatted("%02x", byte);
    return text;
}

/// Without the zeros at the end.
std::string trimmedHex(Data bytes) {
    const auto last = std::find_if(bytes.rbegin(), bytes.rend(), [](auto byte) { return byte != 0; });
    return hexOf(bytes.first(static_cast<std::size_t>(bytes.rend() - last)));
}

/// A small number, a text, or bytes; empty for zeros. A reference shows as in a request.
std::string valueOf(std::string_view name, Data bytes) {
    const std::string hex = trimmedHex(bytes);
    std::uint64_t number = 0;
    for (std::size_t i = 0; i < std::min<std::size_t>(bytes.size(), 8); ++i)
        number |= std::uint64_t{bytes[i]} << 8 * i;
    if (hex.empty())
        return "";
    if (name == "ref")
        return formatted("%08x", static_cast<unsigned>(number));
    if (bytes.size() <= sizeof number)
        return bytes.size() == 1 && number > 9 ? "0x" + hex : std::to_string(number);
    const Data filled = bytes.first(hex.size() / 2);
    return std::ranges::all_of(filled, [](auto byte) { return std::isprint(byte) != 0; })
               ? '"' + std::string(filled.begin(), filled.end()) + '"'
               : hex;
}

/// The fields of a record that are not zero; what stands in no field is its rest.
std::string fieldsOf(const RecordLayout& layout, std::vector<std::uint8_t> bytes) {
    std::string text = std::string(" ") + layout.name;
    for (const FieldLayout& field : layout.fields) {
        const auto place = std::span(bytes).subspan(field.offset, field.size);
        if (const std::string value = valueOf(field.name, place); !value.empty())
            text += std::string(" ") + field.name + "=" + value;
        std::ranges::fill(place, std::uint8_t{0});
    }
    const std::string rest = trimmedHex(bytes);
    return text + (rest.empty() ? "" : " rest=" + rest);
}

/// The records that are sent to be written.
const RecordLayout* sentRecord(std::uint8_t type, std::uint8_t cmd, std::uint32_t opcode) {
    static constexpr struct {
        std::uint8_t type, cmd;
        const RecordLayout& layout;
        std::uint32_t opcode = 0;
    } kSent[] = {{0x01, 0x02, Layout<_MR_CTRL_PROP>::kRecord},
                 {0x01, 0x10, Layout<_MR_PR_PROPERTIES>::kRecord},
                 {0x02, 0x0B, Layout<_SL_DEDICATED_SPARE_T>::kRecord},
                 {0x03, 0x02, Layout<_MR_LD_PROPERTIES>::kRecord},
                 {0x06, 0x03, Layout<_MR_MFC_DEFAULTS>::kRecord, 0x010E0202}};
    for (const auto& row : kSent)
        if (row.type == type && row.cmd == cmd && row.opcode == opcode)
            return &row.layout;
    return nullptr;
}

/// Of data without a name of its own, all bytes where they are few, else their number and a sum over them.
std::string dataText(const std::vector<std::uint8_t>& data) {
    constexpr std::size_t kFew = 64;
    const std::string hex = hexOf(data);
    if (const std::string block = keptBlockOf(hex); !block.empty())
        return " block=" + block;
    if (data.size() <= kFew)
        return " out=" + hex;
    std::uint32_t sum = 0x811C9DC5; // FNV-1a
    for (const std::uint8_t byte : data)
        sum = (sum ^ byte) * 0x01000193;
    return formatted(" out=%zu bytes of sum %08x", data.size(), sum);
}

std::string dcmdText(const _SL_DCMD_INPUT_T& dcmd) {
    const std::string mailbox = trimmedHex(dcmd.mailbox);
    return formatted(" opcode=%08x direction=%u size=%u", dcmd.opcode, dcmd.direction, dcmd.dataSize) +
           (mailbox.empty() ? "" : " mailbox=" + mailbox) +
           (trimmedHex(dcmd.reserved).empty() ? "" : " with reserved bytes of its input set");
}

/// What goes out with a request.
std::string sentText(const TracedRequest& request) {
    const auto dcmd = request.dcmd();
    const std::string head = dcmd ? dcmdText(*dcmd) : "";
    if (request.scsi())
        return fieldsOf(Layout<_SL_SCSI_PASSTHRU_T>::kRecord, request.out);
    const auto& data = dcmd ? request.payload : request.out;
    const RecordLayout* layout = sentRecord(request.header.cmdType, request.header.cmd, dcmd ? dcmd->opcode : 0);
    if (data.empty())
        return head;
    return head + (layout != nullptr && layout->size == data.size() ? fieldsOf(*layout, data) : dataText(data));
}

} // namespace

std::string requestLine(const TracedRequest& request) {
    const auto& header = request.header;
    std::string text = formatted("%u %s", header.ctrlId, request.brief().c_str());
    if (const std::string param = trimmedHex(header.param.bytes); !param.empty())
        text += " param=" + param;
    if (header.dataSize != 0)
        text += formatted(" size=%u", header.dataSize);
    if (request.data.value_or(0) != header.dataSize || (request.data && *request.data == 0))
        text += " with a data pointer that disagrees";
    if (header.reserved0[0] != 0 || header.reserved0[1] != 0)
        text += " with reserved bytes set";
    return text + sentText(request) + (request.status != 0 ? formatted(" -> 0x%02x", request.status) : "");
}

} // namespace zebtest
