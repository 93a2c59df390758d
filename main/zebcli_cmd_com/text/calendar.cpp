#include "main/zebcli_cmd_com/text/calendar.h"

namespace {

constexpr unsigned short kFirstYear = 2000;
constexpr unsigned int kSecondsPerDay = 86400;
constexpr unsigned int kSecondsPerHour = 3600;
constexpr unsigned int kSecondsPerMinute = 60;

int daysOfYear(unsigned short year) {
    return 365 + IsUru(year);
}

} // namespace

int IsUru(unsigned short year) {
    if (year % 100 == 0 && year % 400 != 0)
        return 0;
    return year % 4 == 0 ? 1 : 0;
}

unsigned short GetDaysOfMonth(unsigned short year, unsigned short month) {
    switch (month) {
    case 1:
    case 3:
    case 5:
    case 7:
    case 8:
    case 10:
    case 12:
        return 31;
    case 4:
    case 6:
    case 9:
    case 11:
        return 30;
    case 2:
        return IsUru(year) != 0 ? 29 : 28;
    default:
        return 0;
    }
}

CalendarTime SecondToDate(unsigned int seconds) {
    CalendarTime time{kFirstYear, 1, 0, 0, 0, 0};
    const unsigned int rest = seconds % kSecondsPerDay;
    time.hour = static_cast<unsigned short>(rest / kSecondsPerHour);
    time.minute = static_cast<unsigned short>(rest % kSecondsPerHour / kSecondsPerMinute);
    time.second = static_cast<unsigned short>(rest % kSecondsPerMinute);

    int days = static_cast<int>(seconds / kSecondsPerDay);
    while (days > 364)
        days -= daysOfYear(time.year++);
    if (days < 0) { // the last day of a leap year: the year that was taken off is one day longer than what was left
        --time.year;
        time.month = 12;
        time.day = 31;
        return time;
    }
    while (days >= GetDaysOfMonth(time.year, time.month))
        days -= GetDaysOfMonth(time.year, time.month++);
    time.day = static_cast<unsigned short>(days + 1);
    return time;
}

unsigned int DateToSecond(unsigned short year, unsigned short month, unsigned short day, unsigned short hour) {
    unsigned int days = 0;
    for (unsigned short y = kFirstYear; y < year; ++y)
        days += static_cast<unsigned int>(daysOfYear(y));
    for (unsigned short m = 1; m < month; ++m)
        days += GetDaysOfMonth(year, m);
    days += day - 1U;
    return days * kSecondsPerDay + hour * kSecondsPerHour;
}
