// Asks the library every reading question of the tool once about each object, and at the end the lists, the objects'
// information and the clock once more.
#pragma once

#include "recorder/probe/cell.h"
#include "recorder/session.h"

#include <deque>
#include <map>
#include <tuple>

namespace zebprobe {

/// A question: type and command of a request, the opcode of a controller command, or one of the SCSI commands.
using Question = std::uint32_t;

inline constexpr Question kCtrlList = 0x0000;
inline constexpr Question kVersion = 0x0004;
inline constexpr Question kPartition = 0x0008;
inline constexpr Question kExit = 0x0009;
inline constexpr Question kCtrlInfo = 0x0100;
inline constexpr Question kCtrlProp = 0x0101;
inline constexpr Question kPdList = 0x0104;
inline constexpr Question kEnclList = 0x0105;
inline constexpr Question kPci = 0x010B;
inline constexpr Question kOsMap = 0x010C;
inline constexpr Question kLdList = 0x010D;
inline constexpr Question kPatrolRead = 0x010F;
inline constexpr Question kDriver = 0x0113;
inline constexpr Question kPdInfo = 0x0200;
inline constexpr Question kPdProgress = 0x0207;
inline constexpr Question kPdAllowedOps = 0x0214;
inline constexpr Question kLdInfo = 0x0300;
inline constexpr Question kLdProperties = 0x0301;
inline constexpr Question kLdProgress = 0x0308;
inline constexpr Question kPdInLd = 0x030B;
inline constexpr Question kLdAllowedOps = 0x030E;
inline constexpr Question kConfig = 0x0400;
inline constexpr Question kForeignGuids = 0x0403;
inline constexpr Question kForeignConfig = 0x0405;
inline constexpr Question kArrayInfo = 0x0408;
inline constexpr Question kBbuStatus = 0x0500;
inline constexpr Question kBbuCapacity = 0x0501;
inline constexpr Question kBbuDesign = 0x0502;
inline constexpr Question kBbuProperties = 0x0504;
inline constexpr Question kEnclConfig = 0x0800;
inline constexpr Question kEnclStatus = 0x0805;
inline constexpr Question kClock = 0x01080201;
inline constexpr Question kMfcDefaults = 0x010E0201;
inline constexpr Question kSnapshotInfo = 0x030F0800;
inline constexpr Question kSnapshotSpace = 0x030F0C00;
inline constexpr Question kConnectors = 0x07030000;
/// SCSI commands; they cannot be taken for an opcode, whose top byte is never 0xFF.
inline constexpr Question kLogPages = 0xFF4D0000;
inline constexpr Question kTemperature = 0xFF4D000D;
inline constexpr Question kBootSector = 0xFF280000;

class Survey {
  public:
    explicit Survey(zebrec::Session& session) : session_(session) {}

    /// Asks everything. False when the library did not start or has no controller.
    bool run();

    std::size_t controllers() const { return ids_.size(); }

    /// What a question about an object of the n-th controller was answered; null when it was not asked. `again`: at the
    /// end.
    const Answered* find(std::size_t ctrl, Question question, std::uint32_t reference = 0, bool again = false) const;
    Cell cell(std::size_t ctrl, Question question, std::uint32_t reference = 0, bool again = false) const {
        return Cell(find(ctrl, question, reference, again));
    }

    /// What stands in the lists and in the configuration, as far as it fits into them.
    std::vector<std::uint32_t> drives(std::size_t ctrl) const; ///< device ids of the disks
    std::vector<std::uint32_t> lds(std::size_t ctrl) const; ///< target ids
    std::vector<std::uint32_t> arrays(std::size_t ctrl) const; ///< references
    std::vector<std::uint32_t> enclosures(std::size_t ctrl) const; ///< device ids

    /// Every answer, errors included.
    const std::deque<Answered>& all() const { return all_; }

  private:
    using Key = std::tuple<std::size_t, Question, std::uint32_t, bool>;

    void askController(std::size_t ctrl);
    void askDrive(std::size_t ctrl, std::uint32_t deviceId);
    void askLd(std::size_t ctrl, std::uint32_t targetId);
    void askAgain(std::size_t ctrl);
    void askConfig(std::size_t ctrl, Question question, std::uint32_t reference, bool again = false);
    void askSnapshot(std::size_t ctrl, Question question, std::uint32_t targetId);
    void askPartitions(std::size_t ctrl);

    const Answered& ask(std::size_t ctrl, Question question, std::uint32_t reference = 0, bool again = false,
                        std::uint32_t size = 0, std::uint16_t parameter = 0);
    Answered& keep(std::size_t ctrl, Question question, std::uint32_t reference, bool again);
    void sendCommand(wire::_SL_LIB_CMD_PARAM_T& request, Question question, Answered& answered);
    void sendScsi(wire::_SL_LIB_CMD_PARAM_T& request, Question question, Answered& answered);

    zebrec::Session& session_;
    std::vector<std::uint32_t> ids_; ///< as the library lists them, in the order of the tool's numbers
    std::deque<Answered> all_;
    std::map<Key, const Answered*> places_;
};

} // namespace zebprobe
