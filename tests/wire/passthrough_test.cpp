// The pass-through senders and the checks built on them.
#include "storelib/common/StoreLib/controller.h"
#include "storelib/common/StoreLib/enclosure.h"
#include "storelib/common/StoreLib/ld_snapshot.h"
#include "storelib/common/StoreLib/passthrough.h"
#include "storelib/common/StoreLib/physical_drive.h"
#include "tests/support/wire.h"

namespace zebtest {
namespace {

/// A controller command whose payload goes (1), comes (2) or does both (3).
ExpectedRequest dcmd(std::uint32_t opcode, std::uint8_t direction, std::uint32_t size, std::uint8_t ldNo) {
    ExpectedRequest wanted = request(0, 0, 0, size, (direction & 2U) != 0 ? randomBytes(~opcode, size) : Bytes{});
    wanted.dcmd = DcmdInput{opcode, direction, {ldNo}};
    if ((direction & 1U) != 0)
        wanted.sends = randomBytes(opcode, size);
    return wanted;
}

using WirePassThru = WireTest;

TEST_F(WirePassThru, ControllerCommands) {
    const struct {
        const char* name;
        ExpectedRequest wanted;
        Call call;
    } cases[] = {
        {"SLGetTime", dcmd(0x01080201, 2, 4, 0), on(SLGetTime)},
        {"SLGetMFCDefaults", dcmd(0x010E0201, 2, sizeof(_MR_MFC_DEFAULTS), 0), on(SLGetMFCDefaults)},
        {"SLSetMFCDefaults", dcmd(0x010E0202, 1, sizeof(_MR_MFC_DEFAULTS), 0), on(SLSetMFCDefaults)},
        {"SLGetSASConnector", dcmd(0x07030000, 2, sizeof(_MR_SAS_CONNECTORS), 0), on(SLGetSASConnector)},
        {"SLEnableSnapshot", dcmd(0x030F0100, 1, 16, kLd), on(SLEnableSnapshot, kLd)},
        {"SLDisableSnapshot", dcmd(0x030F0200, 0, 0, kLd), {0, [](void*) { return SLDisableSnapshot(kCont, kLd); }}},
        {"SLCreateSnapshotPIT",
         dcmd(0x030F0300, 3, 99, kLd),
         {99, [](void* data) { return SLCreateSnapshotPIT(kCont, kLd, data, 99); }}},
        {"SLDeleteSnapshotPIT", dcmd(0x030F0400, 1, 8, kLd), on(SLDeleteSnapshotPIT, kLd)},
        {"SLCreateSnapshotView", dcmd(0x030F0500, 3, 72, kLd), on(SLCreateSnapshotView, kLd)},
        {"SLDeleteSnapshotView", dcmd(0x030F0600, 3, 8, kLd), on(SLDeleteSnapshotView, kLd)},
        {"SLGetSnapshotInfo",
         dcmd(0x030F0800, 2, 77, kLd),
         {77, [](void* data) { return SLGetSnapshotInfo(kCont, kLd, data, 77); }}},
        {"SLGetSnapshotRepoSpace",
         dcmd(0x030F0C00, 2, 55, kLd),
         {55, [](void* data) { return SLGetSnapshotRepoSpace(kCont, kLd, data, 55); }}}};
    for (const auto& c : cases) {
        SCOPED_TRACE(c.name);
        Bytes data = c.wanted.sends.value_or(Bytes(c.wanted.size));
        const Bytes wanted = c.wanted.answer.empty() ? data : c.wanted.answer;
        pass({c.wanted}, [&] { return c.call(data.data()); });
        EXPECT_EQ(wanted, data);
        data = c.wanted.sends.value_or(Bytes(c.wanted.size));
        script.expect(failing(c.wanted, 0x0C));
        EXPECT_EQ(0x0CU, c.call(data.data()));
        const auto& [opcode, direction, mailbox] = *c.wanted.dcmd;
        _SL_DCMD_INPUT_T input{};
        input.dataSize = c.wanted.size;
        input.opcode = opcode;
        input.direction = direction;
        input.mailbox[0] = mailbox[0];
        const std::string trace = log.take();
        EXPECT_TRUE(sameText(trace.substr(0, trace.find("\n\n", 600) + 2),
                             requestTrace("SendDCMDPassThru", c.wanted, 0x0C) + "func=SendDCMDPassThru: DcmdInput >\n" +
                                 dumpText(bytesOf(input), offsetof(_SL_DCMD_INPUT_T, data))));
    }
}

TEST_F(WirePassThru, SmartFailureSettingChangesOneByteOfTheDefaults) {
    const ExpectedRequest read = dcmd(0x010E0201, 2, sizeof(_MR_MFC_DEFAULTS), 0);
    ExpectedRequest written = dcmd(0x010E0202, 1, sizeof(_MR_MFC_DEFAULTS), 0);
    written.sends = read.answer;
    written.sends->at(offsetof(_MR_MFC_DEFAULTS, failPdOnSmartError)) = 0xC3;
    for (const unsigned failed : {0U, 1U, 2U}) {
        script.expect(failed == 0 ? failing(read, 0x04) : read);
        if (failed != 0)
            script.expect(failed == 1 ? failing(written, 0x04) : written);
        EXPECT_EQ(failed == 2 ? 0U : 4U, SLSetFailPDOnSmartTer(kCont, 0xC3));
        script.finish();
        const std::string entry = "func=SLSetFailPDOnSmartTer: contNo=1, failPdOnSMARTer=195\n";
        const std::string trace = log.take();
        EXPECT_TRUE(trace.starts_with(entry)) << trace;
        EXPECT_TRUE(trace.ends_with(failed == 2 ? entry : "\n" + statusLine("SLSetFailPDOnSmartTer", 0x04))) << trace;
    }
}

/// A pass-through request for a command that reads.
ExpectedRequest scsi(std::uint8_t kind, std::uint8_t timeout, Bytes cdb, std::uint16_t length, Bytes answer) {
    _SL_SCSI_PASSTHRU_T head{};
    head.deviceId = kDevice;
    head.kind = kind;
    head.direction = kDcmdFromController;
    head.timeout = timeout;
    head.cdbLength = sizeof head.cdb;
    std::copy(cdb.begin(), cdb.end(), head.cdb);
    head.dataLength = length;
    ExpectedRequest wanted = request(0x06, 0x00, kDevice, sizeof head + length, std::move(answer), bytesOf(head));
    wanted.answerAt = sizeof head;
    return wanted;
}

TEST_F(WirePassThru, LogPagesOfADrive) {
    const Bytes page = randomBytes(6, 32);
    const auto steps = [](std::uint8_t code, const Bytes& answer) {
        // A drive that refuses the page leaves no trace.
        return std::vector<Step>{
            {pdList({device(kDevice, kSlot)}), {"SLGetPDList", "SLGetDeviceId", "SCSISENSEPassthru"}},
            {scsi(1, 10, {0x4D, 0, code, 0, 0, 0, 0, 0, 32}, 32, answer), {}}};
    };
    LogPage out{};
    check(
        "SCSISENSEPassthru", steps(0x6F, page), [&] { return SCSISENSEPassthru(kCont, kSlot, 0x2F, out = {}); },
        [&](bool succeeded) { EXPECT_EQ(succeeded ? page : Bytes(32), Bytes(out.begin(), out.end())); });
    unsigned char temperature = page[9] ^ 1;
    check(
        "SLGetPDTemperature", steps(0x4D, page), [&] { return SLGetPDTemperature(kCont, kSlot, &temperature); },
        [&](bool succeeded) { EXPECT_TRUE(temperature == page[9] || !succeeded); });

    Bytes last(32);
    last[3] = 255;
    const Bytes none = last;
    last[31] = 0x0D;
    const std::pair<Bytes, int> lists[] = {{{0, 0, 0, 2, 0, 0x0D}, 1},
                                           {{0, 0, 0, 1, 0, 0x0D}, 0},
                                           {{0, 0, 0x0D, 0x0D}, 0},
                                           {{0, 0, 0, 0, 0x0D}, 0},
                                           {none, 0},
                                           {last, 1}};
    for (const auto& [list, wanted] : lists) {
        int supported = 9;
        check(
            "SLIsTempPageSupported", steps(0x40, list), [&] { return SLIsTempPageSupported(kCont, kSlot, &supported); },
            [&, l = list, w = wanted](bool succeeded) { EXPECT_EQ(succeeded ? w : 0, supported) << dumpText(l); });
    }
}

TEST_F(WirePassThru, LogPagesByDeviceIdTakeOneRequest) {
    const Bytes page = randomBytes(7, 32);
    unsigned char temperature = page[9] ^ 1;
    check(
        "SLGetPDTemperatureByDevice", {{scsi(1, 10, {0x4D, 0, 0x4D, 0, 0, 0, 0, 0, 32}, 32, page), {}}},
        [&] { return SLGetPDTemperatureByDevice(kCont, kDevice, &temperature); },
        [&](bool succeeded) { EXPECT_TRUE(temperature == page[9] || !succeeded); });
    int supported = 9;
    check(
        "SLIsTempPageSupportedByDevice",
        {{scsi(1, 10, {0x4D, 0, 0x40, 0, 0, 0, 0, 0, 32}, 32, {0, 0, 0, 2, 0, 0x0D}), {}}},
        [&] { return SLIsTempPageSupportedByDevice(kCont, kDevice, &supported); },
        [&](bool succeeded) { EXPECT_EQ(succeeded ? 1 : 0, supported); });
}

TEST_F(WirePassThru, BootSectorIsReadTwiceAndTheSecondAnswerCounts) {
    for (const std::size_t active : {0U, 430U, 445U, 446U, 447U, 462U, 478U, 494U, 510U, 511U})
        for (const std::uint32_t status : {0x00U, 0x04U}) {
            Bytes sector(512);
            sector[active] = 0x80;
            const ExpectedRequest read = scsi(0, 180, {0x28, 0, 0, 0, 0, 0, 0, 0, 1}, 512, sector);
            const ExpectedRequest first = failing(read, status ^ 0x04U); // of the two one fails
            ExpectedRequest second = status == 0 ? read : failing(read, status);
            second.sends.reset();
            for (const auto& wanted : {pdList({device(kDevice, kSlot)}), first, second})
                script.expect(wanted);
            int boot = 9;
            EXPECT_EQ(status, SLCheckBootDisk(kCont, kSlot, &boot));
            EXPECT_EQ(status == 0 && active >= 446 && (active - 446) % 16 == 0, boot) << "0x80 at byte " << active;
            script.finish();
            EXPECT_TRUE(sameText(log.take(), status == 0 ? "" : requestTrace("SLCheckBootDisk", read, status)));
        }
}

} // namespace
} // namespace zebtest
