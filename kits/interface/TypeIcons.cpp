// SPDX-License-Identifier: MIT

// The icons of types and nodes: the halves of BMimeType and BNodeInfo that fill bitmaps. One
// bitmap is kept for each type, size and colour space, and all that are asked for share it.

#include <interface/Bitmap.h>
#include <storage/DirectoryTable.h>
#include <storage/Entry.h>
#include <storage/Node.h>
#include <storage/NodeInfo.h>
#include <storage/NodeType.h>

#include <desktop/Types.h>

#include <mutex>
#include <string>
#include <unordered_map>
#include <vector>

using namespace BPrivate;

namespace {

// Of any icon type that files may name in their attributes; real ones are a few hundred.
constexpr size_t kMaxKept = 2000;

// Drawn from all the icon's colours, whatever the bitmap can hold.
desktop::Picture
PictureOf(const desktop::IconPixels& icon)
{
	return desktop::Picture(
		icon.size, icon.size, icon.pixels.data(), static_cast<size_t>(icon.size) * 4);
}

class IconShelf {
public:
	// The bitmap fits the size.
	void Fill(const std::string& type, int32 size, BBitmap* bitmap)
	{
		{
			std::lock_guard lock(fLock);
			auto found = fIcons.find(type);
			if (found != fIcons.end()) {
				bitmap->SharePixels(found->second);
				return;
			}
		}
		// Files are read without the lock; of two threads that do so the first one's bitmap stays.
		BBitmap made(bitmap->Bounds(), bitmap->ColorSpace());
		const desktop::IconPixels icon = desktop::LoadTypeIcon(type, size);
		made.SetBits(icon.pixels.data(), static_cast<int32>(icon.pixels.size() * 4), 0, B_RGBA32);
		desktop::Picture picture = PictureOf(icon);
		picture.SetMaker([type, size](int32 width, int32 height) {
			return width == height ? PictureOf(desktop::LoadTypeIcon(type, size, width))
								   : desktop::Picture();
		});
		made.SetPicture(picture);

		std::lock_guard lock(fLock);
		if (fIcons.size() >= kMaxKept)
			fIcons.clear();
		bitmap->SharePixels(fIcons.try_emplace(type, made).first->second);
	}

private:
	std::mutex fLock;
	std::unordered_map<std::string, BBitmap> fIcons; // by type
};

// NULL for a bitmap that cannot hold an icon of that size.
IconShelf*
ShelfFor(const BBitmap* bitmap, icon_size size)
{
	static IconShelf sShelves[2][3];
	if (size != B_MINI_ICON && size != B_LARGE_ICON)
		return nullptr;
	if (bitmap == nullptr || !bitmap->IsValid() || bitmap->Bounds().IntegerWidth() + 1 != size ||
		bitmap->Bounds().IntegerHeight() + 1 != size)
		return nullptr;
	IconShelf* shelves = size == B_MINI_ICON ? sShelves[0] : sShelves[1];
	switch (bitmap->ColorSpace()) {
		case B_CMAP8:
			return &shelves[0];
		case B_RGB32:
			return &shelves[1];
		case B_RGBA32:
			return &shelves[2];
		default:
			return nullptr;
	}
}

// Of what is no regular file.
const char*
TypeOfMode(mode_t mode)
{
	switch (mode & S_IFMT) {
		case S_IFDIR:
			return desktop::kFolderType;
		case S_IFLNK:
			return desktop::kLinkType;
		case S_IFBLK:
			return "inode/blockdevice";
		case S_IFCHR:
			return "inode/chardevice";
		case S_IFIFO:
			return "inode/fifo";
		case S_IFSOCK:
			return "inode/socket";
		default:
			return desktop::kUnknownType;
	}
}

} // namespace

namespace BPrivate {

// Of any type, known or not.
class TypeIcons {
public:
	static void Fill(const BMimeType& type, icon_size size, BBitmap* bitmap)
	{
		ShelfFor(bitmap, size)->Fill(type.fKey, size, bitmap);
	}

	// `text` is the node's type, empty when it has none.
	static void FillForNode(
		const NodeType& node, const std::string& text, icon_size size, BBitmap* bitmap)
	{
		if (FillFromAttribute(node, size, bitmap))
			return;
		BMimeType type;
		std::string signature;
		if (node.GetPreferredApp(&signature) && type.SetTo(signature.c_str()) == B_OK &&
			desktop::HasOwnIcon(type.fKey)) {
			Fill(type, size, bitmap);
			return;
		}
		type.Unset();
		if (!text.empty())
			type.SetTo(text.c_str());
		if (type.InitCheck() != B_OK || (!S_ISREG(node.Mode()) && !type.IsInstalled()))
			type.SetTo(node.IsBrokenLink() ? desktop::kBrokenLinkType : TypeOfMode(node.Mode()));
		Fill(type, size, bitmap);
	}

	static std::string TypeOf(const NodeType& node)
	{
		std::string text;
		return node.GetType(&text) == B_OK ? text : std::string();
	}

private:
	static bool FillFromAttribute(const NodeType& node, icon_size size, BBitmap* bitmap)
	{
		uint8 bits[B_LARGE_ICON * B_LARGE_ICON];
		const size_t length = static_cast<size_t>(size) * size;
		const char* attribute =
			size == B_MINI_ICON ? "user.BEOS:M:STD_ICON" : "user.BEOS:L:STD_ICON";
		if (!node.ReadFixed(attribute, bits, length))
			return false;
		bitmap->SetBits(bits, static_cast<int32>(length), 0, B_CMAP8);
		return true;
	}
};

} // namespace BPrivate

status_t
BMimeType::GetIcon(BBitmap* bitmap, icon_size size) const
{
	if (fStatus != B_OK)
		return fStatus;
	IconShelf* shelf = ShelfFor(bitmap, size);
	if (shelf == nullptr)
		return B_BAD_VALUE;
	if (!IsInstalled())
		return B_ENTRY_NOT_FOUND;
	shelf->Fill(fKey, size, bitmap);
	return B_OK;
}

status_t
BNodeInfo::GetTrackerIcon(BBitmap* bitmap, icon_size size) const
{
	NodeType node;
	if (status_t status = GetNodeType(&node); status != B_OK)
		return status;
	if (ShelfFor(bitmap, size) == nullptr)
		return B_BAD_VALUE;
	TypeIcons::FillForNode(node, TypeIcons::TypeOf(node), size, bitmap);
	return B_OK;
}

// Without opening the node, since the rows of a list come through here.
status_t
BNodeInfo::GetTrackerIcon(const entry_ref* ref, BBitmap* bitmap, icon_size size)
{
	struct stat status;
	const BEntry entry(ref);
	if (ShelfFor(bitmap, size) == nullptr)
		return B_BAD_VALUE;
	if (status_t error = entry.InitCheck(); error != B_OK)
		return error;
	if (status_t error = entry.GetStat(&status); error != B_OK)
		return error;
	char type[B_MIME_TYPE_LENGTH];
	return GetTypeAndIcon(ref, status, type, bitmap, size);
}

status_t
BNodeInfo::GetTypeAndIcon(
	const entry_ref* ref, const struct stat& status, char* type, BBitmap* bitmap, icon_size size)
{
	if (ref == nullptr || ref->name == nullptr || type == nullptr ||
		ShelfFor(bitmap, size) == nullptr)
		return B_BAD_VALUE;
	FolderHandle folder;
	status_t error = DirectoryTable::Instance().Find(ref->device, ref->directory, &folder);
	if (error != B_OK)
		return error;
	const NodeType node(folder->Descriptor(), ref->name, status.st_mode);
	const std::string text = TypeIcons::TypeOf(node);
	TypeIcons::FillForNode(node, text, size, bitmap);
	const size_t length = text.size() < B_MIME_TYPE_LENGTH ? text.size() : 0;
	type[text.copy(type, length)] = '\0';
	return B_OK;
}
