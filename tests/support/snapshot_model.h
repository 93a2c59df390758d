// A controller's snapshot made by hand.
#pragma once

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <vector>

#include <gtest/gtest.h>

#include "main/zebcli_cmd_com/model/raid_group_numbers.h"
#include "main/zebcli_cmd_com/model/snapshot.h"

namespace zebtest {

inline constexpr unsigned char kCont = 1; ///< the controller that is filled

/// The snapshot of two controllers, of which the second is filled.
class SnapshotModel {
  public:
    SnapshotModel() { EXPECT_EQ(1, AllocDriveInfo(conts_.data(), 2)); }
    ~SnapshotModel() { FreeDriveInfo(conts_.data(), 2); }
    SnapshotModel(const SnapshotModel&) = delete;
    SnapshotModel& operator=(const SnapshotModel&) = delete;

    _AFCONT& cont() { return conts_[kCont]; }
    _MR_PD_INFO& pd(unsigned char slotNo) { return cont().pdInfo[slotNo]; }

    void device(std::uint8_t slotNo, std::uint16_t deviceId, std::uint8_t type = 0) {
        cont().pdList->addr[cont().pdList->count++] = {deviceId, 0, 0, slotNo, type, 0, {}};
        pd(slotNo).copybackPartner = kNoDevice;
    }
    void array(std::uint16_t arrayRef, const std::vector<std::uint16_t>& deviceIds) {
        _MR_ARRAY& array = arrays_.emplace_back();
        array.arrayRef = arrayRef;
        array.numDrives = static_cast<std::uint8_t>(deviceIds.size());
        for (std::size_t i = 0; i < deviceIds.size(); ++i)
            array.pd[i].ref.deviceId = deviceIds[i];
    }
    /// An LD on the arrays; its level is that of the firmware (0, 1, 5, 6).
    void ld(std::uint8_t ldNo, std::uint8_t level, const std::vector<std::uint16_t>& arrayRefs,
            bool cacheCade = false) {
        _MR_LD_CONFIG& ld = lds_.emplace_back();
        ld.properties.ref.targetId = ldNo;
        ld.primaryRaidLevel = level;
        ld.state = kLdOptimal;
        ld.spanDepth = static_cast<std::uint8_t>(arrayRefs.size());
        ld.cacheCade = cacheCade ? 1 : 0;
        for (std::size_t i = 0; i < arrayRefs.size(); ++i) {
            ld.span[i].arrayRef = arrayRefs[i];
            _SL_ARRAY_INFO_T& info = cont().arrayInfo[arrayRefs[i]];
            info.ldTargetId[info.ldCount++] = ldNo;
        }
        cont().ldList->ld[cont().ldList->count++].targetId = ldNo;
        cont().ldInfo[ldNo].config = ld;
    }
    void spare(std::uint16_t deviceId, std::uint8_t type, const std::vector<std::uint16_t>& arrayRefs) {
        _MR_SPARE& spare = spares_.emplace_back();
        spare.ref.deviceId = deviceId;
        spare.type = type;
        spare.arrayCount = static_cast<std::uint8_t>(arrayRefs.size());
        std::copy(arrayRefs.begin(), arrayRefs.end(), spare.arrayRef);
    }

    /// Lays the configuration out, numbers its groups and hands out the snapshot.
    const _AFCONT* conts() {
        std::vector<unsigned char> block(sizeof(_MR_CONFIG_DATA));
        const auto add = [&block](const auto& records) {
            const auto* bytes = reinterpret_cast<const unsigned char*>(records.data());
            block.insert(block.end(), bytes, bytes + records.size() * sizeof records[0]);
            return static_cast<std::uint16_t>(records.size());
        };
        _MR_CONFIG_DATA head{};
        head.arrayCount = add(arrays_);
        head.ldCount = add(lds_);
        head.spareCount = add(spares_);
        head.size = static_cast<std::uint32_t>(block.size());
        std::memcpy(block.data(), &head, sizeof head);
        useConfig(block);
        MakeTransformRGNo(arraysOf(cont()), ldConfigsOf(cont()), cont().rgNoList);
        return conts_.data();
    }
    /// Puts any bytes in the place of the configuration.
    void useConfig(const std::vector<unsigned char>& block) {
        std::free(cont().config);
        cont().config = static_cast<_MR_CONFIG_DATA*>(std::malloc(block.size()));
        cont().configSize = static_cast<std::uint32_t>(block.size());
        std::memcpy(static_cast<void*>(cont().config), block.data(), block.size());
    }

  private:
    std::vector<_AFCONT> conts_ = std::vector<_AFCONT>(2);
    std::vector<_MR_ARRAY> arrays_;
    std::vector<_MR_LD_CONFIG> lds_;
    std::vector<_MR_SPARE> spares_;
};

/// What a builder of texts writes into a buffer that is filled beforehand.
template <class Builder>
std::string textOf(Builder builder, std::size_t size = 1024) {
    std::vector<char> out(size, '?');
    out.back() = '\0';
    builder(std::span<char>(out));
    return out.data();
}

} // namespace zebtest
