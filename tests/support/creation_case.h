// What the tests of custom and easy creation share: the texts of plans, the requests of a snapshot, and the blocks of
// the creation request that are kept by hand.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "tests/support/operation_case.h"

namespace zebtest {

/// The lines of a group in a plan. An empty value leaves its line out.
struct GroupLines {
    std::vector<std::string> lds; ///< "LD0 (LD_0, 97.656GB, RAID5)"
    std::string pds;
    std::string freeSpace = "0.000GB";
    std::string group = {};
    std::string write = "Write Through";
    std::string read = "No Read Ahead";
    std::string io = "Direct IO";
    std::string stripe = "64K";
    std::string diskCache = "Disabled";
    std::string access = "Read Write";
    std::string init = "Quick";
};
Lines plan(unsigned contNo, const std::vector<GroupLines>& groups, const std::vector<std::string>& spares = {});

inline Line asksToExecute() {
    return said("Is it executed?(Y/N)?");
}
inline Line changedMeanwhile(unsigned contNo) {
    return error("Error - Controller[" + number(contNo) +
                 "] The configuration has been changed.\nNothing has been done. Please execute the command again.");
}
inline Line created(unsigned contNo, const std::string& lds) {
    return error("Information - Controller[" + number(contNo) + "] LD(Logical Drive) " + lds + " has been created.");
}
inline Line differs(unsigned contNo) {
    return error("Error - Controller[" + number(contNo) +
                 "] The created LD(Logical Drive) differs from the plan.\nPlease confirm LD(Logical Drive) state.");
}

/// What a wrapper that adds to the configuration logs of a request that succeeds, or fails with the status.
Lines added(const std::string& wrapper, unsigned contNo, std::uint32_t status = 0);

/// What one controller of a snapshot is asked for, by what it holds.
struct SnapshotShape {
    Wire wire;
    std::vector<unsigned> slots = {};
    std::vector<unsigned> lds = {};
    std::vector<unsigned> arrays = {};
    unsigned spares = 0;
};
/// The requests of a snapshot; only the first controller is asked for enclosures.
std::string snapshotRequests(const std::vector<SnapshotShape>& controllers, bool enclosures);

/// The reads of a drive for its boot sector.
std::string bootSector(const Wire& wire, unsigned slot, const std::string& rest = "");

/// A block of the creation request that is kept by hand, in hexadecimal.
std::string keptBlock(const std::string& name);
/// The creation request with that block.
std::string creationRequest(const Wire& wire, const std::string& block, const std::string& rest = "");

/// The block of the only creation request of a run, in hexadecimal; empty when there is none.
std::string blockOf(const RunResult& result);

} // namespace zebtest
