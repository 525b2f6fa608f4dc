// SPDX-License-Identifier: MIT

#include <storage/Volume.h>

#include <storage/Directory.h>

#include <kernel/MountTable.h>

BVolume::BVolume(dev_t device)
{
	SetTo(device);
}

status_t
BVolume::SetTo(dev_t device)
{
	Unset();
	fs_info info;
	fStatus = fs_stat_dev(device, &info);
	if (fStatus == B_OK) {
		fDevice = info.dev;
		fFlags = info.flags;
	}
	return fStatus;
}

void
BVolume::Unset()
{
	fDevice = static_cast<dev_t>(-1);
	fFlags = 0;
	fStatus = B_NO_INIT;
}

status_t
BVolume::GetRootDirectory(BDirectory* folder) const
{
	if (folder == nullptr)
		return B_BAD_VALUE;
	if (fStatus != B_OK) {
		folder->Unset();
		return B_NO_INIT;
	}
	BPrivate::Mount mount;
	struct stat root;
	status_t status = BPrivate::FindMount(fDevice, &mount, &root);
	if (status != B_OK) {
		folder->Unset();
		return status;
	}
	return folder->SetTo(mount.point.c_str());
}
