// SPDX-License-Identifier: MIT

#include <storage/KnownNames.h>

#include <cstring>
#include <ctime>
#include <fcntl.h>
#include <sys/stat.h>

namespace BPrivate {

namespace {

int64
Nanoseconds(const statx_timestamp& time)
{
	return time.tv_sec * 1000000000LL + time.tv_nsec;
}

} // namespace

bool
FileIdentity::Matches(const FileIdentity& now) const
{
	if (node != now.node || (type != DT_UNKNOWN && type != now.type))
		return false;
	if (now.birth == 0)
		return true;
	if (birth != 0)
		return birth == now.birth;
	return bornBefore == 0 || now.birth <= bornBefore;
}

std::optional<FileIdentity>
IdentityAt(int folder, const char* name, int64* changed)
{
	struct statx status;
	if (statx(folder, name, AT_SYMLINK_NOFOLLOW | AT_NO_AUTOMOUNT, STATX_BASIC_STATS | STATX_BTIME,
			&status) != 0)
		return std::nullopt;
	FileIdentity identity;
	identity.node = status.stx_ino;
	identity.type = IFTODT(status.stx_mode);
	identity.hasLinks = !S_ISDIR(status.stx_mode) && status.stx_nlink > 1;
	if ((status.stx_mask & STATX_BTIME) != 0)
		identity.birth = Nanoseconds(status.stx_btime);
	if (changed != nullptr)
		*changed = Nanoseconds(status.stx_ctime);
	return identity;
}

int64
FileTime()
{
	timespec now;
	clock_gettime(CLOCK_REALTIME, &now);
	return now.tv_sec * 1000000000LL + now.tv_nsec;
}

void
KnownNames::SetTo(std::shared_ptr<const DirectorySnapshot> listing, int64 time)
{
	fListing = std::move(listing);
	fListingTime = time;
	fChanged.clear();
}

void
KnownNames::Set(const std::string& name, const FileIdentity& identity)
{
	fChanged[name] = identity;
}

void
KnownNames::Forget(const std::string& name)
{
	if (fListing != nullptr && fListing->Find(name.c_str()) != nullptr)
		fChanged[name] = std::nullopt;
	else
		fChanged.erase(name);
}

std::optional<FileIdentity>
KnownNames::Find(const std::string& name) const
{
	if (!fChanged.empty()) {
		if (auto found = fChanged.find(name); found != fChanged.end())
			return found->second;
	}
	const dirent64* entry = fListing != nullptr ? fListing->Find(name.c_str()) : nullptr;
	if (entry == nullptr)
		return std::nullopt;
	FileIdentity identity;
	identity.node = entry->d_ino;
	identity.type = entry->d_type;
	identity.bornBefore = fListingTime;
	return identity;
}

bool
KnownNames::IsAsListed(const DirectorySnapshot& listing) const
{
	if (fListing == nullptr || !fChanged.empty() || fListing->Count() != listing.Count())
		return false;
	for (size_t i = 0; i < listing.Count(); i++) {
		const dirent64& known = fListing->At(i);
		const dirent64& listed = listing.At(i);
		if (known.d_ino != listed.d_ino || strcmp(known.d_name, listed.d_name) != 0)
			return false;
	}
	return true;
}

} // namespace BPrivate
