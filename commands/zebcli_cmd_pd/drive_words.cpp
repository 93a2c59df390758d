#include "commands/zebcli_cmd_pd/drive_words.h"

#include "main/zebcli_cmd_com/base/string_shims.h"
#include "main/zebcli_cmd_com/model/lookup.h"
#include "main/zebcli_cmd_com/text/vocabulary.h"

namespace {

constexpr std::uint8_t kPowerTransitioning = 255;

} // namespace

void mkInterfaceTypeStr(const _MR_PD_INFO* pd, std::span<char> out) {
    static constexpr const char* kWords[] = {"Unknown", "Parallel SCSI", "SAS", "SATA", "Fiber Channel"};
    strcpy_s(out.data(), out.size(), wordOf(kWords, interfaceOf(*pd), "Not defined"));
}

void mkPDSpeedStr(std::uint8_t speed, std::span<char> out) {
    static constexpr const char* kWords[] = {"Unknown", "1.5 Gbps", "3.0 Gbps", "6.0 Gbps"};
    strcpy_s(out.data(), out.size(), wordOf(kWords, speed, "Unknown"));
}

void mkPDPowerStateStr(std::uint8_t state, std::span<char> out) {
    static constexpr const char* kWords[] = {"On", "Off"};
    strcpy_s(out.data(), out.size(), wordOf(kWords, state, state == kPowerTransitioning ? "Transitioning" : "Unknown"));
}
