// SPDX-License-Identifier: MIT

#include "panes/Kind.h"

#include <kernel/OS.h>
#include <kernel/fs_info.h>
#include <storage/Volume.h>

#include <functional>
#include <mutex>
#include <string_view>
#include <unordered_map>

namespace {

// Real types are a few hundred, but files may name any in their attributes.
constexpr size_t kMaxKept = 2000;
constexpr bigtime_t kRootIsGoodFor = 1000000; // us

struct TextHash {
	typedef void is_transparent;
	size_t operator()(std::string_view text) const { return std::hash<std::string_view>()(text); }
};

KindRef
NewKind(const char* text)
{
	return std::make_shared<const Kind>(Kind{BMimeType(), text});
}

KindRef
NewKindOfType(const BMimeType& type)
{
	char text[B_MIME_TYPE_LENGTH];
	if (type.GetShortDescription(text) != B_OK && type.GetLongDescription(text) != B_OK)
		return std::make_shared<const Kind>(Kind{type, type.Type()});
	return std::make_shared<const Kind>(Kind{type, text});
}

// The kinds of valid types. Rows of one folder have few, and ask for each many times.
class KindShelf {
public:
	// Null for what is no type's name.
	KindRef Get(const char* name)
	{
		{
			std::lock_guard lock(fLock);
			auto found = fKinds.find(std::string_view(name));
			if (found != fKinds.end())
				return found->second;
		}
		const BMimeType type(name);
		if (type.InitCheck() != B_OK)
			return nullptr;
		KindRef made = NewKindOfType(type);
		std::lock_guard lock(fLock);
		if (fKinds.size() >= kMaxKept)
			fKinds.clear(); // rows keep theirs
		return fKinds.try_emplace(name, std::move(made)).first->second;
	}

private:
	std::mutex fLock;
	std::unordered_map<std::string, KindRef, TextHash, std::equal_to<>> fKinds;
};

// The number of the root folder of a device's volume. Asking for it takes longer than reading a
// row, and the answer changes only when something is mounted.
ino_t
RootOf(dev_t device)
{
	struct Last {
		dev_t device;
		ino_t root;
		bigtime_t until = 0;
	};
	static thread_local Last sLast;
	const bigtime_t now = system_time();
	if (now >= sLast.until || sLast.device != device) {
		fs_info info;
		sLast.root = fs_stat_dev(device, &info) == 0 ? info.root : 0;
		sLast.device = device;
		sLast.until = now + kRootIsGoodFor;
	}
	return sLast.root;
}

KindRef
FolderKind(const struct stat& status)
{
	static const KindRef sFolder = NewKind("FOLDER");
	static const KindRef sVirtual = NewKind("Virtual Volume");
	static const KindRef sShared = NewKind("Shared Volume");
	static const KindRef sRemovable = NewKind("Removable Volume");
	static const KindRef sVolume = NewKind("Volume");
	if (status.st_ino != RootOf(status.st_dev))
		return sFolder;
	const BVolume volume(status.st_dev);
	if (!volume.IsPersistent())
		return sVirtual;
	if (volume.IsShared())
		return sShared;
	return volume.IsRemovable() ? sRemovable : sVolume;
}

} // namespace

const KindRef&
UnknownKind()
{
	static const KindRef sUnknown = NewKind(" -- ");
	return sUnknown;
}

KindRef
KindOf(const char* type, const struct stat& status)
{
	static const KindRef sLink = NewKind("???");
	static KindShelf sShelf;
	if (type[0] != '\0') {
		if (KindRef kind = sShelf.Get(type))
			return kind;
	}
	if (S_ISDIR(status.st_mode))
		return FolderKind(status);
	return S_ISLNK(status.st_mode) ? sLink : UnknownKind();
}
