// Controller commands of the snapshot feature. Each names its LD in the first mailbox byte. Statuses as in
// storelib/records/status.h; 0 is success.
#pragma once

#include <array>
#include <cstdint>

/// The data blocks of the commands whose size is fixed.
using SnapshotEnableBlock = std::array<std::uint8_t, 16>;
using SnapshotDeleteBlock = std::array<std::uint8_t, 8>;
using SnapshotViewBlock = std::array<std::uint8_t, 72>;

std::uint32_t SLEnableSnapshot(unsigned char contNo, unsigned char ldNo, SnapshotEnableBlock* block);
std::uint32_t SLDisableSnapshot(unsigned char contNo, unsigned char ldNo);
std::uint32_t SLCreateSnapshotPIT(unsigned char contNo, unsigned char ldNo, void* block, std::uint32_t size);
std::uint32_t SLDeleteSnapshotPIT(unsigned char contNo, unsigned char ldNo, SnapshotDeleteBlock* block);
std::uint32_t SLCreateSnapshotView(unsigned char contNo, unsigned char ldNo, SnapshotViewBlock* block);
std::uint32_t SLDeleteSnapshotView(unsigned char contNo, unsigned char ldNo, SnapshotDeleteBlock* block);

/// Far more than the snapshots of one LD fill, bytes. A size above it is a lie.
inline constexpr std::uint32_t kLargestSnapshotSize = 1U << 20;

/// The snapshot information of an LD is read in two steps: its first 32-bit word is its size in bytes. The size is 0 on
/// failure.
std::uint32_t SLGetSnapshotInfoSize(unsigned char contNo, unsigned char ldNo, std::uint32_t* size);
std::uint32_t SLGetSnapshotInfo(unsigned char contNo, unsigned char ldNo, void* info, std::uint32_t size);

/// The repository space of an LD is read in the same way.
std::uint32_t SLGetSnapshotRepoSpaceSize(unsigned char contNo, unsigned char ldNo, std::uint32_t* size);
std::uint32_t SLGetSnapshotRepoSpace(unsigned char contNo, unsigned char ldNo, void* space, std::uint32_t size);
