// Every wire record in one list, for whoever walks over all of them.
#pragma once

#include "storelib/records/cache_backup.h"
#include "storelib/records/configuration.h"
#include "storelib/records/controller.h"
#include "storelib/records/enclosure.h"
#include "storelib/records/logical_drive.h"
#include "storelib/records/physical_drive.h"
#include "storelib/records/request.h"

#include <array>

// clang-format off
/// Hands the name of each record to the given macro.
#define ZEB_WIRE_RECORDS(each) \
    each(_MR_PD_REF) \
    each(_MR_LD_REF) \
    each(_SL_LIB_CMD_PARAM_T) \
    each(_SL_CTRL_LIST_T) \
    each(_SL_LIB_VER_T) \
    each(_SL_DCMD_INPUT_T) \
    each(_SL_SCSI_PASSTHRU_T) \
    each(_MR_CTRL_PROP) \
    each(_MR_IMAGE_COMPONENT) \
    each(_MR_CTRL_INFO) \
    each(_MR_DRV_PCI_INFORMATION) \
    each(_MR_DRV_DRIVER_VERSION) \
    each(_MR_PR_PROPERTIES) \
    each(_MR_MFC_DEFAULTS) \
    each(_SL_LD_OS_MAP_ENTRY) \
    each(_SL_LD_OS_MAP_T) \
    each(_SL_PARTITION_INFO_T) \
    each(_MR_FOREIGN_CFG_GUIDS) \
    each(_MR_PD_ADDRESS) \
    each(_MR_PD_LIST) \
    each(_MR_PROGRESS) \
    each(_MR_PD_PROGRESS) \
    each(_MR_INQUIRY_DATA) \
    each(_MR_PD_INFO) \
    each(_MR_PD_ALLOWED_OPS) \
    each(_MR_SPAN) \
    each(_MR_LD_PROPERTIES) \
    each(_MR_LD_CONFIG) \
    each(_MR_LD_PROGRESS) \
    each(_MR_LD_INFO) \
    each(_MR_LD_LIST_ENTRY) \
    each(_MR_LD_LIST) \
    each(_SL_PD_IN_LD_T) \
    each(_MR_LD_ALLOWED_OPS) \
    each(_MR_ARRAY_PD) \
    each(_MR_ARRAY) \
    each(_MR_SPARE) \
    each(_MR_CONFIG_DATA) \
    each(_MR_FREE_SEGMENT) \
    each(_SL_ARRAY_INFO_T) \
    each(_SL_DEDICATED_SPARE_T) \
    each(_MR_ENCL_ENTRY) \
    each(_MR_ENCL_LIST) \
    each(_SL_ENCL_CONFIG_T) \
    each(_SL_ENCL_ELEMENT) \
    each(_SL_ENCL_STATUS_EX_T) \
    each(_MR_SAS_CONNECTOR) \
    each(_MR_SAS_CONNECTORS) \
    each(_MR_BBU_STATUS) \
    each(_MR_BBU_CAPACITY_INFO) \
    each(_MR_BBU_DESIGN_INFO) \
    each(_MR_BBU_PROPERTIES)
// clang-format on

namespace wire {

/// The layout of every record: its name, size and fields, and the word that says where each of them comes from.
#define ZEB_LAYOUT(record) Layout<record>::kRecord,
inline constexpr auto kAllRecords = std::to_array<RecordLayout>({ZEB_WIRE_RECORDS(ZEB_LAYOUT)});
#undef ZEB_LAYOUT

} // namespace wire
