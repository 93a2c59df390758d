#include "storelib/common/StoreLib/ld_snapshot.h"

#include "storelib/common/StoreLib/passthrough.h"

namespace {

constexpr std::uint32_t kOpcodeInfo = 0x030F0800;
constexpr std::uint32_t kOpcodeRepoSpace = 0x030F0C00;

std::uint32_t readSize(Caller caller, unsigned char contNo, Dcmd dcmd, std::uint32_t* size) {
    *size = 0;
    return sendDcmd(caller, contNo, dcmd, size, sizeof *size);
}

} // namespace

std::uint32_t SLEnableSnapshot(unsigned char contNo, unsigned char ldNo, SnapshotEnableBlock* block) {
    return sendDcmd(__func__, contNo, {0x030F0100, kDcmdToController, ldNo}, block, sizeof *block);
}

std::uint32_t SLDisableSnapshot(unsigned char contNo, unsigned char ldNo) {
    return sendDcmd(__func__, contNo, {0x030F0200, kDcmdNone, ldNo}, nullptr, 0);
}

std::uint32_t SLCreateSnapshotPIT(unsigned char contNo, unsigned char ldNo, void* block, std::uint32_t size) {
    return sendDcmd(__func__, contNo, {0x030F0300, kDcmdBoth, ldNo}, block, size);
}

std::uint32_t SLDeleteSnapshotPIT(unsigned char contNo, unsigned char ldNo, SnapshotDeleteBlock* block) {
    return sendDcmd(__func__, contNo, {0x030F0400, kDcmdToController, ldNo}, block, sizeof *block);
}

std::uint32_t SLCreateSnapshotView(unsigned char contNo, unsigned char ldNo, SnapshotViewBlock* block) {
    return sendDcmd(__func__, contNo, {0x030F0500, kDcmdBoth, ldNo}, block, sizeof *block);
}

std::uint32_t SLDeleteSnapshotView(unsigned char contNo, unsigned char ldNo, SnapshotDeleteBlock* block) {
    return sendDcmd(__func__, contNo, {0x030F0600, kDcmdBoth, ldNo}, block, sizeof *block);
}

std::uint32_t SLGetSnapshotInfoSize(unsigned char contNo, unsigned char ldNo, std::uint32_t* size) {
    return readSize(__func__, contNo, {kOpcodeInfo, kDcmdFromController, ldNo}, size);
}

std::uint32_t SLGetSnapshotInfo(unsigned char contNo, unsigned char ldNo, void* info, std::uint32_t size) {
    return sendDcmd(__func__, contNo, {kOpcodeInfo, kDcmdFromController, ldNo}, info, size);
}

std::uint32_t SLGetSnapshotRepoSpaceSize(unsigned char contNo, unsigned char ldNo, std::uint32_t* size) {
    return readSize(__func__, contNo, {kOpcodeRepoSpace, kDcmdFromController, ldNo}, size);
}

std::uint32_t SLGetSnapshotRepoSpace(unsigned char contNo, unsigned char ldNo, void* space, std::uint32_t size) {
    return sendDcmd(__func__, contNo, {kOpcodeRepoSpace, kDcmdFromController, ldNo}, space, size);
}
