// SPDX-License-Identifier: MIT

// UpdateCounter: an integer of 0 or more that many threads count up and down.
//
// Postfix ++, postfix -- and <= trace to standard output before and after their work; the lock is
// not held for that, so another thread may change the value between work and trace.

#pragma once

#include "support/Benaphore.h"

class UpdateCounter {
public:
	int32 operator++();
	int32 operator++(int);

	// At 0 both return 0 and change nothing.
	int32 operator--();
	int32 operator--(int);

	bool operator<(long value) const { return Read() < value; }
	bool operator<=(long value) const;
	bool operator>(long value) const { return Read() > value; }
	bool operator>=(long value) const { return Read() >= value; }
	bool operator==(long value) const { return Read() == value; }
	bool operator!=(long value) const { return Read() != value; }

	UpdateCounter& operator=(long value);

private:
	long Read() const; // under the lock

	std::atomic<int32> fValue = 0; // changed under the lock, traced without
	mutable Benaphore fLock{"UpdateCounter"};
};

// The file transfers at work since the last change of folder.
extern UpdateCounter gUpdateTolerance;
