// SPDX-License-Identifier: MIT

#include "support/SmartDate.h"

#include <support/SupportDefs.h>

namespace {

// Days are compared within one year only: on 1 January the day before shows as another year's.
const char*
FormatFor(const std::tm& when, const std::tm& now)
{
	if (when.tm_year < now.tm_year)
		return fmt_prevyear;
	if (when.tm_year > now.tm_year)
		return fmt_future;

	int16 days = static_cast<int16>(when.tm_yday - now.tm_yday);
	switch (days) {
		case -4:
		case -3:
		case -2:
			return fmt_lastweek;
		case -1:
			return fmt_yesterday;
		case 0:
			return fmt_today;
		case 1:
			return fmt_tomorrow;
		default:
			return fmt_thisyear;
	}
}

} // namespace

char*
SmartDate(std::tm* when, char* buf, unsigned short bufSize)
{
	std::time_t seconds = std::time(nullptr);
	std::tm now = {};
	localtime_r(&seconds, &now);

	// strftime() leaves rubbish behind when it runs out of room.
	if (std::strftime(buf, bufSize, FormatFor(*when, now), when) == 0 && bufSize > 0)
		*buf = '\0';
	return buf;
}

char*
SmartDate(std::time_t* when, char* buf, unsigned short bufSize)
{
	std::tm local = {};
	localtime_r(when, &local);
	return SmartDate(&local, buf, bufSize);
}
