#include "recorder/field_kinds.h"

#include "storelib/records/all.h"

#include <algorithm>
#include <map>
#include <string_view>

namespace zebrec {

namespace {

/// A field that holds a record or a table of records.
struct Nested {
    std::string_view record;
    std::string_view field;
    const wire::RecordLayout* inner;
};

template <class Record>
constexpr const wire::RecordLayout* kLayout = &wire::Layout<Record>::kRecord;

constexpr Nested kNested[] = {
    {"_MR_CTRL_INFO", "imageComponent", kLayout<_MR_IMAGE_COMPONENT>},
    {"_MR_CTRL_INFO", "pendingImageComponent", kLayout<_MR_IMAGE_COMPONENT>},
    {"_MR_CTRL_INFO", "properties", kLayout<_MR_CTRL_PROP>},
    {"_SL_LD_OS_MAP_T", "entry", kLayout<_SL_LD_OS_MAP_ENTRY>},
    {"_MR_PD_LIST", "addr", kLayout<_MR_PD_ADDRESS>},
    {"_MR_PD_PROGRESS", "rebuild", kLayout<_MR_PROGRESS>},
    {"_MR_PD_PROGRESS", "patrolRead", kLayout<_MR_PROGRESS>},
    {"_MR_PD_PROGRESS", "clear", kLayout<_MR_PROGRESS>},
    {"_MR_PD_INFO", "ref", kLayout<_MR_PD_REF>},
    {"_MR_PD_INFO", "inquiry", kLayout<_MR_INQUIRY_DATA>},
    {"_MR_PD_INFO", "progress", kLayout<_MR_PD_PROGRESS>},
    {"_MR_LD_PROPERTIES", "ref", kLayout<_MR_LD_REF>},
    {"_MR_LD_CONFIG", "properties", kLayout<_MR_LD_PROPERTIES>},
    {"_MR_LD_CONFIG", "span", kLayout<_MR_SPAN>},
    {"_MR_LD_PROGRESS", "cc", kLayout<_MR_PROGRESS>},
    {"_MR_LD_PROGRESS", "bgi", kLayout<_MR_PROGRESS>},
    {"_MR_LD_PROGRESS", "init", kLayout<_MR_PROGRESS>},
    {"_MR_LD_PROGRESS", "recon", kLayout<_MR_PROGRESS>},
    {"_MR_LD_INFO", "config", kLayout<_MR_LD_CONFIG>},
    {"_MR_LD_INFO", "progress", kLayout<_MR_LD_PROGRESS>},
    {"_MR_LD_LIST", "ld", kLayout<_MR_LD_LIST_ENTRY>},
    {"_MR_ARRAY_PD", "ref", kLayout<_MR_PD_REF>},
    {"_MR_SPARE", "ref", kLayout<_MR_PD_REF>},
    {"_MR_ARRAY", "pd", kLayout<_MR_ARRAY_PD>},
    {"_SL_ARRAY_INFO_T", "pd", kLayout<_MR_ARRAY_PD>},
    {"_SL_ARRAY_INFO_T", "freeSegment", kLayout<_MR_FREE_SEGMENT>},
    {"_MR_ENCL_LIST", "encl", kLayout<_MR_ENCL_ENTRY>},
    {"_SL_ENCL_STATUS_EX_T", "element", kLayout<_SL_ENCL_ELEMENT>},
    {"_MR_SAS_CONNECTORS", "connector", kLayout<_MR_SAS_CONNECTOR>},
};

struct Identifying {
    std::string_view record;
    std::string_view field;
    FieldKind kind;
};

constexpr Identifying kIdentifying[] = {
    {"_MR_CTRL_INFO", "hostPortAddr", FieldKind::kAddress},
    {"_MR_CTRL_INFO", "devicePortAddr", FieldKind::kAddress},
    {"_MR_CTRL_INFO", "serialNo", FieldKind::kText},
    {"_MR_PD_ADDRESS", "sasAddr", FieldKind::kAddress},
    {"_MR_PD_INFO", "sasAddr", FieldKind::kAddress},
    {"_MR_LD_PROPERTIES", "name", FieldKind::kText},
    {"_SL_LD_OS_MAP_ENTRY", "osDeviceName", FieldKind::kText},
    {"_MR_FOREIGN_CFG_GUIDS", "guid", FieldKind::kAddress},
    {"_SL_ENCL_CONFIG_T", "logicalId", FieldKind::kAddress},
    {"_MR_BBU_DESIGN_INFO", "serialNo", FieldKind::kSerialNumber},
};

/// What a row says of a field of a record, or null.
template <class Row>
const Row* rowOf(const wire::RecordLayout& record, const wire::FieldLayout& field, const Row* first, const Row* last) {
    const Row* found =
        std::find_if(first, last, [&](const Row& row) { return row.record == record.name && row.field == field.name; });
    return found == last ? nullptr : found;
}

void addPieces(const wire::RecordLayout& layout, std::size_t base, std::vector<FieldPiece>& pieces) {
    for (const wire::FieldLayout& field : layout.fields) {
        if (const wire::RecordLayout* inner = recordIn(layout, field)) {
            for (std::size_t at = 0; at + inner->size <= field.size; at += inner->size)
                addPieces(*inner, base + field.offset + at, pieces);
            continue;
        }
        const Identifying* row = rowOf(layout, field, std::begin(kIdentifying), std::end(kIdentifying));
        const FieldKind kind = row != nullptr ? row->kind : FieldKind::kPlain;
        const std::size_t offset = base + field.offset;
        if (!pieces.empty() && kind == FieldKind::kPlain && pieces.back().kind == kind &&
            pieces.back().offset + pieces.back().size == offset)
            pieces.back().size += field.size;
        else
            pieces.push_back({offset, field.size, kind});
    }
}

} // namespace

const wire::RecordLayout* recordIn(const wire::RecordLayout& layout, const wire::FieldLayout& field) {
    const Nested* nested = rowOf(layout, field, std::begin(kNested), std::end(kNested));
    return nested != nullptr ? nested->inner : nullptr;
}

const std::vector<FieldPiece>& piecesOf(const wire::RecordLayout& layout) {
    static std::map<std::string_view, std::vector<FieldPiece>> known;
    const auto [place, fresh] = known.try_emplace(layout.name);
    if (fresh)
        addPieces(layout, 0, place->second);
    return place->second;
}

} // namespace zebrec
