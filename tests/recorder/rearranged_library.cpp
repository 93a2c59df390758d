// The simulated library with one record laid out differently. ZEB_REARRANGE names the record and by how many bytes its
// fields are moved ("_MR_PD_INFO:4"); fields whose place is given stay. ZEB_REARRANGE_OF is the library behind it.
#include "recorder/field_kinds.h"
#include "recorder/request.h"
#include "storelib/records/all.h"
#include "storelib/records/views.h"

#include <cstdlib>
#include <cstring>
#include <dlfcn.h>

extern "C" __attribute__((visibility("default"))) unsigned ProcessLibCommand(_SL_LIB_CMD_PARAM_T* request);

namespace {

using Room = std::span<std::uint8_t>;

std::string recordName() {
    const std::string text = std::getenv("ZEB_REARRANGE");
    return text.substr(0, text.find(':'));
}

std::size_t distance() {
    const std::string text = std::getenv("ZEB_REARRANGE");
    return std::stoul(text.substr(text.find(':') + 1));
}

/// Moves what stands between the fields whose place is given.
void move(const wire::RecordLayout& layout, Room bytes) {
    std::vector<std::size_t> free;
    for (std::size_t i = 0; i < layout.size; ++i) {
        const auto holds = [&](const auto& f) { return i >= f.offset && i < f.offset + f.size; };
        const auto field = std::find_if(layout.fields.begin(), layout.fields.end(), holds);
        if (field == layout.fields.end() || field->origin != wire::Origin::given)
            free.push_back(i);
    }
    const zebrec::Bytes before(bytes.begin(), bytes.end());
    for (std::size_t i = 0; i < free.size(); ++i)
        bytes[free[(i + distance()) % free.size()]] = before[free[i]];
}

/// Moves the fields of the record wherever it stands in this one.
void rearrange(const wire::RecordLayout& layout, Room bytes) {
    if (bytes.size() < layout.size)
        return;
    if (layout.name == recordName())
        return move(layout, bytes.first(layout.size));
    for (const wire::FieldLayout& field : layout.fields)
        if (const wire::RecordLayout* inner = zebrec::recordIn(layout, field))
            for (std::size_t at = 0; at + inner->size <= field.size; at += inner->size)
                rearrange(*inner, bytes.subspan(field.offset + at, inner->size));
}

void rearrangeConfig(Room bytes) {
    auto* config = reinterpret_cast<_MR_CONFIG_DATA*>(bytes.data());
    const auto section = [](auto records) {
        for (auto& record : records)
            rearrange(wire::Layout<std::remove_reference_t<decltype(record)>>::kRecord,
                      {reinterpret_cast<std::uint8_t*>(&record), sizeof record});
    };
    section(arraysOf(config, bytes.size()));
    section(ldsOf(config, bytes.size()));
    section(sparesOf(config, bytes.size()));
    rearrange(wire::Layout<_MR_CONFIG_DATA>::kRecord, bytes);
}

void rearrangeAnswer(const zebrec::Data& data, Room bytes) {
    if (data.shape == zebrec::Shape::kConfiguration && bytes.size() >= sizeof(_MR_CONFIG_DATA))
        rearrangeConfig(bytes);
    if (data.shape == zebrec::Shape::kRecord)
        rearrange(*data.layout, bytes);
}

zebrec::Request requestOf(const _SL_LIB_CMD_PARAM_T& request) {
    zebrec::Header header;
    std::memcpy(header.data(), &request, header.size());
    const auto* data = static_cast<const std::uint8_t*>(request.data);
    return zebrec::Request::of(header, {data, data == nullptr ? 0U : request.dataSize});
}

} // namespace

unsigned ProcessLibCommand(_SL_LIB_CMD_PARAM_T* request) {
    using EntryPoint = unsigned (*)(_SL_LIB_CMD_PARAM_T*);
    static void* library = ::dlopen(std::getenv("ZEB_REARRANGE_OF"), RTLD_NOW | RTLD_LOCAL);
    static const auto entry = reinterpret_cast<EntryPoint>(::dlsym(library, "ProcessLibCommand"));
    const zebrec::Request asked = requestOf(*request);
    // What is sent is read with the fields elsewhere.
    _SL_LIB_CMD_PARAM_T sent = *request;
    rearrange(wire::Layout<_SL_LIB_CMD_PARAM_T>::kRecord, {reinterpret_cast<std::uint8_t*>(&sent), sizeof sent});
    const Room data{static_cast<std::uint8_t*>(request->data), request->data == nullptr ? 0U : request->dataSize};
    if (asked.dcmd)
        rearrange(wire::Layout<_SL_DCMD_INPUT_T>::kRecord, data);
    const unsigned status = entry(&sent);
    if (status != 0)
        return status;
    if (!asked.dcmd) {
        rearrangeAnswer(asked.data(), data);
    } else {
        _SL_DCMD_INPUT_T input;
        std::memcpy(&input, data.data(), sizeof input);
        rearrangeAnswer(asked.innerData(), {static_cast<std::uint8_t*>(input.data), asked.dcmd->dataSize});
    }
    return status;
}
