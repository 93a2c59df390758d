// Controller time against the calendar of the standard library.
#include <chrono>

#include <gtest/gtest.h>

#include "main/zebcli_cmd_com/text/calendar.h"

namespace zebtest {
namespace {

TEST(UnitCalendar, EveryDayThatTheClockCanShow) {
    using namespace std::chrono;
    const sys_days epoch = year{2000} / January / 1;
    for (unsigned day = 0; day <= 0xFFFFFFFFU / 86400U; ++day) {
        const year_month_day wanted(epoch + days(day));
        const auto hour = static_cast<unsigned short>(day % 7); // the last day of the range has not many more
        const unsigned seconds = day * 86400U + hour * 3600U;
        const CalendarTime got = SecondToDate(seconds + 59 * 60 + 58);
        ASSERT_EQ(static_cast<int>(wanted.year()), got.year) << day;
        ASSERT_EQ(static_cast<unsigned>(wanted.month()), got.month) << day;
        ASSERT_EQ(static_cast<unsigned>(wanted.day()), got.day) << day;
        ASSERT_EQ(hour * 10000 + 5958, got.hour * 10000 + got.minute * 100 + got.second) << day;
        ASSERT_EQ(seconds, DateToSecond(got.year, got.month, got.day, hour)) << day;
        const year_month_day_last last(wanted.year() / wanted.month() / std::chrono::last);
        ASSERT_EQ(static_cast<unsigned>(last.day()), GetDaysOfMonth(got.year, got.month)) << day;
    }
    const CalendarTime last = SecondToDate(0xFFFFFFFFU);
    EXPECT_EQ(6 * 10000 + 28 * 100 + 15, last.hour * 10000 + last.minute * 100 + last.second);
}

TEST(UnitCalendar, LeapYearsAndMonthsThatAreNone) {
    for (unsigned y = 1900; y <= 2500; ++y)
        EXPECT_EQ(std::chrono::year(static_cast<int>(y)).is_leap(), IsUru(static_cast<unsigned short>(y)) == 1) << y;
    for (const int month : {0, 13, 14, 255, 65535})
        EXPECT_EQ(0, GetDaysOfMonth(2000, static_cast<unsigned short>(month))) << month;
}

} // namespace
} // namespace zebtest
