#include "commands/zebcli_cmd_ld/slot_table.h"

#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "storelib/common/StoreLib/enclosure.h"

#include <algorithm>
#include <array>

namespace {

constexpr std::size_t kLdColumnWidth = 17;
constexpr std::size_t kCutAt = 14;

} // namespace

void forEachSlot(const TraceOrigin& origin, Controller ctrl,
                 const std::function<void(unsigned char slotNo, const char* name, bool present)>& row) {
    std::uint16_t slots = 0;
    if (!succeeded(SLGetSlotNum(ctrl.contNo, &slots), origin, "SLGetSlotNum error", onController(ctrl.contNo)))
        return;
    std::array<unsigned char, kMaxSlots> present{};
    GetDeviceFoundList(ctrl.contNo, ctrl.conts, present);
    const unsigned count = std::min<unsigned>(slots != 0 ? slots : ctrl.cont().slotCount, kMaxSlots);
    for (unsigned slot = 0; slot < count; ++slot) {
        char name[8];
        wsprintf(name, "PD%u", slot);
        row(static_cast<unsigned char>(slot), name, present[slot] != 0);
    }
}

void cutLdColumn(std::span<char> text) {
    if (strnlen(text.data(), text.size()) > kLdColumnWidth)
        strcpy_s(text.data() + kCutAt, text.size() - kCutAt, "...");
}
