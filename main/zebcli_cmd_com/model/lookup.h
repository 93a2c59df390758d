// Questions about the snapshot, which they read and nothing else.
#pragma once

#include "main/zebcli_cmd_com/model/snapshot.h"

#include <array>
#include <cstdint>
#include <span>

/// The slot of a disk with that device id; where several have it, the last. 1, or 0 when none has it.
int GetSlotNo(unsigned char contNo, unsigned short deviceId, unsigned char* slotNo, const _AFCONT* conts);

/// The device id of the first disk in that slot. 1, or 0 when there is none.
int GetDeviceId(unsigned char contNo, const _AFCONT* conts, unsigned char slotNo, unsigned short* deviceId);

/// 1 when there is a disk in that slot, else 0.
int IsExistPD(unsigned char contNo, unsigned char slotNo, const _AFCONT* conts);

/// 1 when there is an LD with that target id, else 0.
int IsExistLD(unsigned char contNo, unsigned char ldNo, const _AFCONT* conts);

/// Sets map[slot] to 1 for every disk, all others to 0.
void GetDeviceFoundList(unsigned char contNo, const _AFCONT* conts, std::array<unsigned char, kMaxSlots>& map);

/// The slots of an LD's drives, span by span, in the order of their positions; empty positions are left out.
void GetPDInLD(unsigned char contNo, unsigned char ldNo, std::array<unsigned char, kMaxSlots>& slots, unsigned* count,
               const _AFCONT* conts);

/// What GetPDInLD finds, as a value.
struct PdsInLd {
    std::array<unsigned char, kMaxSlots> slots;
    unsigned count;
    std::span<const unsigned char> list() const& { return std::span(slots).first(count); }
    std::span<const unsigned char> list() const&& = delete; // it would outlive its slots
};
PdsInLd pdsInLd(Controller ctrl, unsigned char ldNo);

/// Answers of CheckLDActive.
enum LdActivity { kLdIdle = 0, kLdInitializing = 1, kLdChecking = 2, kLdRebuilding = 3, kLdCopyingBack = 4 };

/// The background work of an LD: its own first, then that of its drives.
int CheckLDActive(unsigned char contNo, unsigned char ldNo, const _AFCONT* conts);

/// 1 when the drive's copy-back partner copies back, else 0.
int HddIsDuringCopyBack(unsigned char contNo, unsigned char slotNo, const _AFCONT* conts);

/// The interface of a drive (SAS, SATA, ...) as a number, 0 to 15.
unsigned interfaceOf(const _MR_PD_INFO& pd);

/// The media of a drive (HDD, SSD, ...) as a number, 0 to 15.
unsigned mediaOf(const _MR_PD_INFO& pd);

/// 1 when the controller has a cache backup unit, else 0.
int IsCacheBkupPresent(const _AFCONT* conts, unsigned char contNo);

/// The controller's advanced options: 1 snapshot, 2 CacheCade, 4 FastPath.
enum AdvancedOption : unsigned { kOptionSnapshot = 1, kOptionCacheCade = 2, kOptionFastPath = 4 };
unsigned IsEnablePF(unsigned char contNo, const _AFCONT* conts);

/// Drives that are candidates for something.
struct _PD_CANDIDATES_T {
    std::uint16_t count;
    std::uint8_t slotNo[kMaxSlots];
};

/// The coerced sizes of the candidates, blocks, in their order. Returns how many were written.
unsigned GePdSizeList(std::span<std::uint64_t> sizes, const _AFCONT* conts, unsigned char contNo,
                      const _PD_CANDIDATES_T& candidates);
