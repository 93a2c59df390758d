// Requests about physical drives. A drive is named by its slot number alone: one slot numbering per controller is
// assumed on purpose, and the enclosure is never compared. Statuses as in storelib/records/status.h; 0 is success.
#pragma once

#include "storelib/common/StoreLib/request_path.h"
#include "storelib/records/physical_drive.h"

#include <cstdint>

/// The PD list, sorted ascending by slot number.
std::uint32_t SLGetPDList(unsigned char contNo, _MR_PD_LIST* list);

/// The order of the PD list, for qsort.
int PDSortFunc(const void* a, const void* b);

/// The device id of the first disk in that slot; 12 when there is none. Reads the PD list afresh.
std::uint32_t SLGetDeviceId(unsigned char contNo, unsigned char slotNo, std::uint16_t* deviceId);

/// The slot number of the first disk with that device id; 12 when there is none. Reads the PD list afresh.
std::uint32_t SLGetSlotNo(unsigned char contNo, std::uint16_t deviceId, unsigned char* slotNo);

std::uint32_t SLGetPDInfo(unsigned char contNo, unsigned char slotNo, _MR_PD_INFO* info);

/// The information of the drive with that device id: one request, without a look-up of its slot.
std::uint32_t SLGetPDInfoByDevice(unsigned char contNo, std::uint16_t deviceId, _MR_PD_INFO* info);

std::uint32_t SLGetPdProggress(unsigned char contNo, unsigned char slotNo, _MR_PD_PROGRESS* progress);
std::uint32_t SLGetPDAllowedOperation(unsigned char contNo, unsigned char slotNo, _MR_PD_ALLOWED_OPS* allowed);

/// The current sequence number of the drive with that device id.
std::uint32_t SLGetPDSequenceNumber(unsigned char contNo, std::uint16_t deviceId, std::uint16_t* seqNo);

std::uint32_t SLMakeDriveOnline(unsigned char contNo, unsigned char slotNo);
std::uint32_t SLMakeDriveOffline(unsigned char contNo, unsigned char slotNo);
std::uint32_t SLMakeDriveUnconfGood(unsigned char contNo, unsigned char slotNo);
std::uint32_t SLStartRebuild(unsigned char contNo, unsigned char slotNo);
std::uint32_t SLCancelRebuild(unsigned char contNo, unsigned char slotNo);
/// The mode byte goes to the library as it is.
std::uint32_t SLStartLocatePD(unsigned char contNo, unsigned char slotNo, unsigned char mode);
std::uint32_t SLStopLocatePD(unsigned char contNo, unsigned char slotNo);

/// Names the PD in that slot by its device id. Returns 12 when the slot holds no disk; the failure is traced.
std::uint32_t setPdReference(Caller caller, SL_LIB_CMD_PARAM_T& request, unsigned char contNo, unsigned char slotNo);

/// Names the PD in that slot by its device id and its current sequence number.
std::uint32_t setPdReferenceWithSequence(Caller caller, SL_LIB_CMD_PARAM_T& request, unsigned char contNo,
                                         unsigned char slotNo);

/// A change of the drive in that slot: its device id and current sequence number, no data.
std::uint32_t changePd(Caller caller, unsigned char contNo, Command command, unsigned char slotNo,
                       Trace trace = Trace::OnFailure);
