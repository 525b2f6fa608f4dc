// SPDX-License-Identifier: MIT

// Dates as text: the nearer the day, the more it is told by name.

#pragma once

#include <ctime>

// For strftime(). The days are those of the current year.
constexpr char fmt_prevyear[] = "%x";
constexpr char fmt_thisyear[] = "%X %b %d";
constexpr char fmt_lastweek[] = "%X %A"; // two to four days ago
constexpr char fmt_yesterday[] = "%X Yesterday";
constexpr char fmt_today[] = "%X Today";
constexpr char fmt_tomorrow[] = "%X Tomorrow";
constexpr char fmt_future[] = "%x"; // a later year

// Both write the text for local time and return `buf`; empty when `bufSize` bytes cannot hold it.
char* SmartDate(std::tm* when, char* buf, unsigned short bufSize);
char* SmartDate(std::time_t* when, char* buf, unsigned short bufSize);
