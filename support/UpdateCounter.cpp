// SPDX-License-Identifier: MIT

#include "support/UpdateCounter.h"

#include <cstdio>

UpdateCounter gUpdateTolerance;

int32
UpdateCounter::operator++()
{
	fLock.Lock();
	int32 value = ++fValue;
	fLock.Unlock();
	return value;
}

int32
UpdateCounter::operator++(int)
{
	std::printf(">> UC(%ld)++\n", static_cast<long>(fValue));
	int32 value = ++*this - 1;
	std::printf("<< UC(%ld)++\n", static_cast<long>(fValue));
	return value;
}

int32
UpdateCounter::operator--()
{
	fLock.Lock();
	int32 value = fValue < 1 ? 0 : --fValue;
	fLock.Unlock();
	return value;
}

int32
UpdateCounter::operator--(int)
{
	std::printf(">> UC(%ld)--\n", static_cast<long>(fValue));
	fLock.Lock();
	int32 value = fValue < 1 ? 0 : fValue--;
	fLock.Unlock();
	std::printf("<< UC(%ld)--\n", static_cast<long>(fValue));
	return value;
}

bool
UpdateCounter::operator<=(long value) const
{
	std::printf(">> UC(%ld) <= %ld\n", static_cast<long>(fValue), value);
	bool result = Read() <= value;
	std::printf("<< UC(%ld) <= %ld\n", static_cast<long>(fValue), value);
	return result;
}

UpdateCounter&
UpdateCounter::operator=(long value)
{
	fLock.Lock();
	fValue = static_cast<int32>(value);
	fLock.Unlock();
	return *this;
}

long
UpdateCounter::Read() const
{
	fLock.Lock();
	long value = fValue;
	fLock.Unlock();
	return value;
}
