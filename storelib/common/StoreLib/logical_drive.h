// Requests about logical drives, which are named by their target id. Statuses as in storelib/records/status.h; 0 is
// success.
#pragma once

#include "storelib/records/logical_drive.h"

#include <cstdint>

/// The LD list, sorted ascending by target id.
std::uint32_t SLGetLDList(unsigned char contNo, _MR_LD_LIST* list);

/// The order of the LD list, for qsort.
int LDSortFunc(const void* a, const void* b);

/// The number of LDs (low byte of the list's count).
std::uint32_t SLGetLdNum(unsigned char contNo, unsigned char* count);

std::uint32_t SLGetLDInfo(unsigned char contNo, unsigned char ldNo, _MR_LD_INFO* info);
std::uint32_t SLGetLDProperties(unsigned char contNo, unsigned char ldNo, _MR_LD_PROPERTIES* properties);
std::uint32_t SLGetLdProggress(unsigned char contNo, unsigned char ldNo, _MR_LD_PROGRESS* progress);
std::uint32_t SLGetPDInLD(unsigned char contNo, unsigned char ldNo, _SL_PD_IN_LD_T* drives);
std::uint32_t SLGetLDAllowedOperation(unsigned char contNo, unsigned char ldNo, _MR_LD_ALLOWED_OPS* allowed);

/// The LD's current sequence number.
std::uint32_t SLGetLDSequenceNumber(unsigned char contNo, unsigned char ldNo, std::uint16_t* seqNo);

std::uint32_t SLDeleteLD(unsigned char contNo, unsigned char ldNo);
std::uint32_t SLStartCheckConsistency(unsigned char contNo, unsigned char ldNo);
std::uint32_t SLCancelCheckConsistency(unsigned char contNo, unsigned char ldNo);
std::uint32_t SLStartInitialization(unsigned char contNo, unsigned char ldNo);
std::uint32_t SLCancelInitialization(unsigned char contNo, unsigned char ldNo);

/// Writes an LD's properties. The LD and its sequence number are those of the record.
std::uint32_t SLSetLDProperties(unsigned char contNo, _MR_LD_PROPERTIES* properties);

/// Sets the LD's two snapshot settings: the first to bit 0 of a, the second, inverted on purpose, exactly when b is 0.
std::uint32_t SLSetSnapshotProp(unsigned char contNo, unsigned char ldNo, unsigned char a, unsigned char b);

/// 1 when a drive of the LD is rebuilding or copying back, else 0; not set on failure.
std::uint32_t SLIsDuringRebuildCopyback(unsigned char contNo, unsigned char ldNo, int* during);
