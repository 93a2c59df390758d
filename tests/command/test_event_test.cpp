// The event table of a test event where it is full or no file. The rest is in transcripts/test_event.txt.
#include <sys/stat.h>

#include "tests/support/operation_test.h"

#include <gmock/gmock.h>

namespace zebtest {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;
using TestEvent = OperationTest;

TEST_F(TestEvent, TableHoldsThreeHundredAndThirty) {
    const auto table = box.zeb() / "zeb_config.csv";
    const std::string others = repeated("Z,1,7,0,1,6,7,8,9,t,11\n", 329);
    const std::string own = "Z,1,60009,0,11,6,7,8,9,the last,11\n";
    writeFile(table, others + own + "not read any more\n");
    EXPECT_THAT(box.run({"-tstevt", "-err"}).syslog, ElementsAre(HasSubstr("Detailedmsg: the last, ID: 060009")));
    writeFile(table, others + "Z,1,7,0,1,6,7,8,9,t,11\n" + own);
    EXPECT_THAT(box.run({"-tstevt", "-err"}).syslog, ElementsAre());
    EXPECT_EQ("!ERR func=CliCmdExecTSTEVT: pEvt_Info is NULL, eventCode=60009", loggedMessages().back());
}

TEST_F(TestEvent, WhatIsNoFileIsNotRead) {
    const auto table = box.zeb() / "zeb_config.csv";
    for (const bool folder : {false, true}) {
        std::filesystem::remove(table);
        std::filesystem::remove(box.log());
        ASSERT_TRUE(folder ? std::filesystem::create_directory(table) : mkfifo(table.c_str(), 0600) == 0);
        EXPECT_EQ("", box.run({"-tstevt", "-inf"}).out);
        EXPECT_THAT(loggedMessages(), ElementsAre("!ERR func=ReadEventInfo: ZEBConfigFile open error",
                                                  "!ERR func=CliCmdExecTSTEVT: pEvt_Info is NULL, eventCode=60011"));
    }
}

} // namespace
} // namespace zebtest
