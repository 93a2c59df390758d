#include "commands/zebcli_cmd_pd/drive_words.h"

#include "commands/zebcli_cmd_pd/pd_targets.h"
#include "main/zebcli_cmd_com/string_shims.h"

namespace {

constexpr std::uint8_t kPowerTransitioning = 255;

void setWord(std::span<char> out, std::span<const char* const> words, unsigned code, const char* otherwise) {
    strcpy_s(out.data(), out.size(), code < words.size() ? words[code] : otherwise);
}

} // namespace

void mkInterfaceTypeStr(const _MR_PD_INFO* pd, std::span<char> out) {
    static constexpr const char* kWords[] = {"Unknown", "Parallel SCSI", "SAS", "SATA", "Fiber Channel"};
    setWord(out, kWords, interfaceOf(*pd), "Not defined");
}

void mkPDSpeedStr(std::uint8_t speed, std::span<char> out) {
    static constexpr const char* kWords[] = {"Unknown", "1.5 Gbps", "3.0 Gbps", "6.0 Gbps"};
    setWord(out, kWords, speed, "Unknown");
}

void mkPDPowerStateStr(std::uint8_t state, std::span<char> out) {
    static constexpr const char* kWords[] = {"On", "Off"};
    setWord(out, kWords, state, state == kPowerTransitioning ? "Transitioning" : "Unknown");
}
