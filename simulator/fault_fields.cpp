// The fields that a fault can set by name: those that the records' own declarations list.
#include "simulator/fault_effects.h"
#include "storelib/records/all.h"

namespace zebsim {

namespace {

/// A record in an answer: the answer itself, or a part of it whose fields have names of their own.
struct Part {
    std::uint8_t type;
    std::uint8_t cmd;
    const RecordLayout& layout;
    std::size_t at = 0; ///< where it begins in the answer
};

constexpr Part kParts[] = {
    {0x01, 0x00, Layout<_MR_CTRL_INFO>::kRecord},
    {0x01, 0x00, Layout<_MR_CTRL_PROP>::kRecord, offsetof(_MR_CTRL_INFO, properties)},
    {0x01, 0x01, Layout<_MR_CTRL_PROP>::kRecord},
    {0x01, 0x04, Layout<_MR_PD_LIST>::kRecord},
    {0x01, 0x05, Layout<_MR_ENCL_LIST>::kRecord},
    {0x01, 0x0C, Layout<_SL_LD_OS_MAP_T>::kRecord},
    {0x01, 0x0D, Layout<_MR_LD_LIST>::kRecord},
    {0x01, 0x0F, Layout<_MR_PR_PROPERTIES>::kRecord},
    {0x00, 0x08, Layout<_SL_PARTITION_INFO_T>::kRecord},
    {0x02, 0x00, Layout<_MR_PD_INFO>::kRecord},
    {0x02, 0x00, Layout<_MR_PD_REF>::kRecord, offsetof(_MR_PD_INFO, ref)},
    {0x02, 0x00, Layout<_MR_PD_PROGRESS>::kRecord, offsetof(_MR_PD_INFO, progress)},
    {0x03, 0x00, Layout<_MR_LD_INFO>::kRecord},
    {0x03, 0x00, Layout<_MR_LD_CONFIG>::kRecord},
    {0x03, 0x00, Layout<_MR_LD_PROPERTIES>::kRecord},
    {0x03, 0x00, Layout<_MR_LD_REF>::kRecord},
    {0x03, 0x00, Layout<_MR_LD_PROGRESS>::kRecord, offsetof(_MR_LD_INFO, progress)},
    {0x03, 0x0B, Layout<_SL_PD_IN_LD_T>::kRecord},
    {0x04, 0x00, Layout<_MR_CONFIG_DATA>::kRecord},
    {0x04, 0x08, Layout<_SL_ARRAY_INFO_T>::kRecord},
    {0x05, 0x00, Layout<_MR_BBU_STATUS>::kRecord},
    {0x05, 0x04, Layout<_MR_BBU_PROPERTIES>::kRecord},
    {0x08, 0x05, Layout<_SL_ENCL_STATUS_EX_T>::kRecord},
};

} // namespace

std::optional<RecordField> findField(std::uint8_t type, std::uint8_t cmd, const std::string& name) {
    for (const Part& part : kParts) {
        for (const FieldLayout& field : part.layout.fields) {
            if (part.type == type && part.cmd == cmd && field.name == name)
                return RecordField{part.at + field.offset, field.size};
        }
    }
    return std::nullopt;
}

std::string fieldNames(std::uint8_t type, std::uint8_t cmd) {
    std::string names;
    for (const Part& part : kParts) {
        for (const FieldLayout& field : part.layout.fields) {
            if (part.type == type && part.cmd == cmd)
                names += (names.empty() ? "" : ", ") + std::string(field.name);
        }
    }
    return names;
}

} // namespace zebsim
