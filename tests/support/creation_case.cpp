#include "tests/support/creation_case.h"

#include <algorithm>
#include <cctype>
#include <filesystem>
#include <sstream>

#include "tests/support/paths.h"

namespace zebtest {
namespace {

constexpr std::uint32_t kAddConfiguration = 0x04020000;

void addField(Lines& lines, const std::string& label, const std::string& value) {
    if (!value.empty())
        lines.push_back(error("  " + label + std::string(15 - label.size(), ' ') + ": " + value));
}

} // namespace

Lines plan(unsigned contNo, const std::vector<GroupLines>& groups, const std::vector<std::string>& spares) {
    Lines lines;
    lines.push_back(error("Controller[" + number(contNo) + "] The following LD[s](Logical Drive[s]) will be created."));
    for (const auto& group : groups) {
        for (const auto& ld : group.lds)
            lines.push_back(error(">" + ld));
        addField(lines, "RG No.", group.group);
        addField(lines, "PD No.", group.pds);
        addField(lines, "Stripe Size", group.stripe);
        addField(lines, "Write Policy", group.write);
        addField(lines, "Read Policy", group.read);
        addField(lines, "IO Policy", group.io);
        addField(lines, "Disk Cache", group.diskCache);
        addField(lines, "Access Policy", group.access);
        addField(lines, "Initialization", group.init);
        addField(lines, "Free Space", group.freeSpace);
    }
    for (const auto& spare : spares)
        lines.push_back(error(">" + spare));
    return lines;
}

Lines added(const std::string& wrapper, unsigned contNo, std::uint32_t status) {
    const Lines dump = traced("func=" + wrapper + ": contNo=" + number(contNo));
    const Lines result = {traced("func=" + wrapper + ": DcmdInput >"), sent(wrapper, status).back()};
    if (status == 0)
        return dump + result;
    return dump + sent("SendDCMDPassThru", status) + traced("func=SendDCMDPassThru: DcmdInput >") + result;
}

std::string snapshotRequests(const std::vector<SnapshotShape>& controllers, bool enclosures) {
    std::string text = controllers.front().wire.request("01/05", 0, " size=4616");
    for (const auto& shape : controllers) {
        const Wire& wire = shape.wire;
        text += wire.request("01/00", 0, " size=2048");
        if (enclosures && &shape == &controllers.front())
            text += wire.request("01/05", 0, " size=4616");
        text += wire.pdList() + wire.request("01/0d", 0, " size=1032") + wire.request("04/00", 0, " size=616");
        const std::size_t size = 32 + 288 * shape.arrays.size() + 256 * shape.lds.size() + 40UL * shape.spares;
        text += wire.request("04/00", 0, " size=" + std::to_string(size));
        for (const unsigned slot : shape.slots)
            text += wire.pdInfo(slot);
        for (const unsigned ld : shape.lds)
            text += wire.ldInfo(ld);
        for (const unsigned array : shape.arrays)
            text += wire.arrayInfo(array);
    }
    return text;
}

std::string bootSector(const Wire& wire, unsigned slot, const std::string& rest) {
    std::string header(64, '\0');
    header[0] = static_cast<char>(slot + 8);
    header[4] = 2;
    header[8] = static_cast<char>(180);
    header[11] = 10;
    header[12] = 0x28;
    header[20] = 1;
    header[61] = 2;
    const std::string read = wire.request("06/00", slot + 8, " size=576 out=" + toHex(header) + rest);
    return wire.pdList() + read + read;
}

std::string keptBlock(const std::string& name) {
    std::istringstream file(readFile(std::filesystem::path(paths::expectedDir) / "creation" / (name + ".txt")));
    std::string block;
    for (std::string line; std::getline(file, line);) {
        std::istringstream row(line.substr(0, line.find('#')));
        std::string word;
        if (!(row >> word))
            continue;
        if (word == "size") {
            std::size_t size = 0;
            row >> size;
            block.assign(2 * size, '0');
            continue;
        }
        std::string bytes;
        std::size_t times = 1;
        for (std::string byte; row >> byte;)
            if (byte.front() == 'x')
                times = std::stoul(byte.substr(1));
            else
                bytes += byte;
        const std::string all = repeated(bytes, static_cast<unsigned>(times));
        const std::size_t at = 2 * std::stoul(word);
        EXPECT_LE(at + all.size(), block.size()) << name << ": " << line;
        if (at + all.size() <= block.size())
            block.replace(at, all.size(), all);
    }
    EXPECT_FALSE(block.empty()) << name;
    std::ranges::transform(block, block.begin(), [](unsigned char c) { return static_cast<char>(std::tolower(c)); });
    return block;
}

std::string creationRequest(const Wire& wire, const std::string& block, const std::string& rest) {
    const auto size = static_cast<std::uint32_t>(block.size() / 2);
    return wire.dcmd(kAddConfiguration, 1, size, block, rest);
}

std::string blockOf(const RunResult& result) {
    std::string block;
    for (const TracedRequest& request : parseTrace(result.trace)) {
        const auto dcmd = request.dcmd();
        if (!dcmd || dcmd->opcode != kAddConfiguration)
            continue;
        EXPECT_EQ("", block) << "more than one creation request";
        block = toHex({reinterpret_cast<const char*>(request.payload.data()), request.payload.size()});
    }
    return block;
}

} // namespace zebtest
