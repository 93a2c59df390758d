#include "commands/zebcli_cmd_ld/creation/usable_drive.h"

#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"

#include <algorithm>

namespace {

/// A slot names a drive, so of two disks with one slot number the wrong one would be taken.
bool isOnlyOneInSlot(const _AFCONT& cont, unsigned char slotNo) {
    const auto addresses = pdAddresses(cont);
    return std::count_if(addresses.begin(), addresses.end(), [&](const _MR_PD_ADDRESS& address) {
               return address.scsiDevType == kScsiDisk && address.slotNo == slotNo;
           }) == 1;
}

/// Why the drive cannot be taken, but for its state; null when nothing speaks against it.
const char* obstacle(Controller ctrl, unsigned char slotNo) {
    const _MR_PD_INFO& pd = ctrl.pd(slotNo);
    if ((pd.ddfType & (kDdfInLd | kDdfGlobalSpare | kDdfSpare)) != 0)
        return "it belongs to a LD or is a Hot Spare";
    if ((pd.ddfType & kDdfForeign) != 0)
        return "a foreign configuration exists";
    if (!isOnlyOneInSlot(ctrl.cont(), slotNo))
        return "the slot number is not unique";
    if (pd.progress.active != 0)
        return "an operation is in progress";
    return pd.coercedSize == 0 ? "the capacity is zero" : nullptr;
}

} // namespace

bool isUsable(Controller ctrl, unsigned char slotNo, std::span<char> reason) {
    const std::uint16_t state = ctrl.pd(slotNo).fwState;
    if (state != kPdUnconfiguredGood) {
        char word[kTextSize];
        mkPDStateStr(state, word);
        sprintf_s(reason.data(), reason.size(), "the state is %s", word);
        return false;
    }
    const char* text = obstacle(ctrl, slotNo);
    strcpy_s(reason.data(), reason.size(), text != nullptr ? text : "");
    return text == nullptr;
}

bool isUsable(Controller ctrl, unsigned char slotNo) {
    return ctrl.pd(slotNo).fwState == kPdUnconfiguredGood && obstacle(ctrl, slotNo) == nullptr;
}

SeenDrive seenDrive(Controller ctrl, unsigned char slotNo) {
    unsigned short deviceId = kNoDevice;
    GetDeviceId(ctrl.contNo, ctrl.conts, slotNo, &deviceId);
    return {slotNo, deviceId, ctrl.pd(slotNo).coercedSize};
}

bool isUnchanged(Controller ctrl, const SeenDrive& seen) {
    return isUsable(ctrl, seen.slotNo) && seenDrive(ctrl, seen.slotNo) == seen;
}
