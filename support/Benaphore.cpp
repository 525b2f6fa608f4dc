// SPDX-License-Identifier: MIT

#include "support/Benaphore.h"

Benaphore::Benaphore(const char* name) : fSemaphore(create_sem(0, name)), fValid(fSemaphore >= 0) {}

Benaphore::~Benaphore()
{
	delete_sem(fSemaphore);
}

status_t
Benaphore::Lock()
{
	if (!fValid)
		return fSemaphore < 0 ? fSemaphore : B_ERROR;

	status_t status = B_OK;
	if (atomic_add(&fCount, 1) > 0) {
		do
			status = acquire_sem(fSemaphore);
		while (status == B_INTERRUPTED);
	}
	if (status != B_OK) {
		atomic_add(&fCount, -1);
		fValid = false;
	}
	return status;
}

void
Benaphore::Unlock()
{
	if (atomic_add(&fCount, -1) > 1)
		release_sem(fSemaphore);
}
