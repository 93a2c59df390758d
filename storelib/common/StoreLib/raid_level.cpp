#include "storelib/common/StoreLib/raid_level.h"

#include "storelib/records/views.h"

ZEB_RAID_LVL SLTransLateRAIDLvl(const _MR_LD_CONFIG* ld) {
    switch (ld->primaryRaidLevel) {
    case 0:
        return kRaid0;
    case 1:
        return spansOf(*ld).size() > 1 ? kRaid10 : kRaid1;
    case 5:
        return kRaid5;
    case 6:
        return kRaid6;
    default:
        return kRaidUnknown;
    }
}
