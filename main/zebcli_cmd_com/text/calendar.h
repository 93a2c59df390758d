// Controller time: seconds since 2000-01-01 00:00:00.
#pragma once

struct CalendarTime {
    unsigned short year;
    unsigned short month;
    unsigned short day;
    unsigned short hour;
    unsigned short minute;
    unsigned short second;
};

/// 1 for a leap year, else 0.
int IsUru(unsigned short year);

/// The days of a month (1 to 12), 0 for any other month number.
unsigned short GetDaysOfMonth(unsigned short year, unsigned short month);

/// The date and time of a controller time.
CalendarTime SecondToDate(unsigned int seconds);

/// The controller time of a full hour.
unsigned int DateToSecond(unsigned short year, unsigned short month, unsigned short day, unsigned short hour);
