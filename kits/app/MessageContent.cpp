// SPDX-License-Identifier: MIT

#include "kits/app/MessageContent.h"

#include <app/MessagePrivate.h>
#include <storage/Directory.h>
#include <storage/Entry.h>
#include <storage/Path.h>
#include <storage/UriList.h>

#include <algorithm>
#include <fstream>
#include <map>
#include <string_view>

namespace BPrivate {

namespace {

using namespace desktop::format;

// The message around the one that travels: "machine" tells whether device and inode numbers mean
// the same here as there, "folder" is the path of each folder that a ref needs.
constexpr uint32 kPacked = 'KPck';
constexpr int32 kMostFolders = 4096; // what another program can make us open
constexpr int32 kMaxDepth = 32;

const std::string&
ThisMachine()
{
	static const std::string sId = [] {
		std::string id;
		std::getline(std::ifstream("/proc/sys/kernel/random/boot_id"), id);
		return id;
	}();
	return sId;
}

std::string_view
WithoutEnd(std::string_view text)
{
	while (!text.empty() && text.back() == '\0')
		text.remove_suffix(1);
	return text;
}

bool
Has(const std::vector<std::string>& formats, const char* format)
{
	return std::find(formats.begin(), formats.end(), format) != formats.end();
}

// Refs for paths. The folder of one is most often the folder of the next.
class RefFinder {
public:
	bool Find(const std::string& path, entry_ref* ref);

private:
	std::map<std::string, entry_ref> fFolders; // to a ref of an entry in it; unset: none there
};

bool
RefFinder::Find(const std::string& path, entry_ref* ref)
{
	const size_t slash = path.rfind('/');
	const std::string name = path.substr(slash + 1);
	if (name.empty() || name == "." || name == "..") // "/", and what must be made plain
		return BEntry(path.c_str()).GetRef(ref) == B_OK;
	if (name.size() >= B_FILE_NAME_LENGTH)
		return false;
	auto [known, isNew] = fFolders.try_emplace(path.substr(0, slash + 1));
	if (isNew)
		BEntry(path.c_str()).GetRef(&known->second);
	if (known->second.name == nullptr)
		return false;
	*ref = known->second;
	return ref->set_name(name.c_str()) == B_OK;
}

bool
AddRefs(const std::vector<std::string>& paths, BMessage* message)
{
	RefFinder finder;
	entry_ref ref;
	for (const std::string& path : paths) {
		if (finder.Find(path, &ref))
			message->AddRef("refs", &ref);
	}
	return !message->IsEmpty();
}

// Nobody else's pointer is worth anything here, and who takes it for one of ours crashes.
void
RemovePointers(BMessage* message, int32 depth)
{
	std::vector<std::string> pointers;
	std::vector<std::string> messages;
	for (const Field& field : MessageAccess::Fields(*message).All()) {
		if (field.type == B_POINTER_TYPE)
			pointers.push_back(field.name);
		else if (field.type == B_MESSAGE_TYPE)
			messages.push_back(field.name);
	}
	for (const std::string& name : pointers)
		message->RemoveName(name.c_str());
	for (const std::string& name : messages) {
		BMessage inner;
		for (int32 i = 0;
			 depth < kMaxDepth && message->FindMessage(name.c_str(), i, &inner) == B_OK; i++) {
			RemovePointers(&inner, depth + 1);
			message->ReplaceMessage(name.c_str(), i, &inner);
		}
	}
}

// The steps of ReadContent(): each leaves the message without fields when there is nothing.

status_t
ReadCopied(const FormatReader& read, BMessage* message)
{
	std::string bytes;
	CopiedFiles files;
	const status_t status = read(kCopiedFiles, &bytes);
	if (status == B_OK && ReadCopiedFiles(bytes, &files) && AddRefs(files.paths, message))
		message->AddBool(files.cut ? "Cut" : "Copy", true);
	return status;
}

status_t
ReadUris(const FormatReader& read, bool mayBeCut, ContentUse use, BMessage* message)
{
	std::string bytes;
	status_t status = read(kUriList, &bytes);
	if (status != B_OK || !AddRefs(ReadUriList(bytes), message) || use == ContentUse::kDrag)
		return status;
	bool cut = false;
	if (mayBeCut) {
		status = read(kCutSelection, &bytes);
		cut = status == B_OK && ReadCutSelection(bytes);
	}
	message->AddBool(cut ? "Cut" : "Copy", true);
	return status;
}

status_t
ReadText(const FormatReader& read, BMessage* message)
{
	std::string bytes;
	const status_t status = read(kText, &bytes);
	const std::string_view text = WithoutEnd(bytes);
	if (status == B_OK && !text.empty()) {
		message->what = B_MIME_DATA;
		message->AddData(kText, B_MIME_TYPE, text.data(), static_cast<ssize_t>(text.size()));
	}
	return status;
}

bool
GoesOn(status_t status, const BMessage& message)
{
	return message.IsEmpty() && (status == B_OK || status == B_NAME_NOT_FOUND);
}

} // namespace

MessageContent::MessageContent(const BMessage& message, ContentUse use, const BMessenger& replyTo) :
	fMessage(message), fUse(use), fReplyTo(replyTo)
{
	for (const Field& field : MessageAccess::Fields(fMessage).All()) {
		entry_ref ref;
		for (int32 i = 0; fMessage.FindRef(field.name.c_str(), i, &ref) == B_OK; i++) {
			if (const std::optional<size_t> folder = FolderOf(ref); folder && field.name == "refs")
				fFiles.push_back({*folder, ref.name});
		}
	}
}

// The index of the ref's folder, or nothing when it is not known or gone.
std::optional<size_t>
MessageContent::FolderOf(const entry_ref& ref)
{
	const std::pair<dev_t, ino_t> numbers(ref.device, ref.directory);
	if (numbers != fLastFolder) {
		fLastFolder = numbers;
		auto [known, isNew] = fFolderIndex.try_emplace(numbers);
		if (isNew) {
			const BPath path(&ref);
			if (path.InitCheck() == B_OK) {
				const std::string text = path.Path();
				known->second = fFolders.size();
				fFolders.push_back(text.substr(0, text.rfind('/') + 1));
			}
		}
		fLastIndex = known->second;
	}
	return fLastIndex;
}

std::vector<std::string>
MessageContent::Formats() const
{
	std::vector<std::string> formats = {kMessage};
	if (!fFiles.empty()) {
		if (fUse == ContentUse::kClipboard)
			formats.push_back(kCopiedFiles);
		formats.push_back(kUriList);
		if (fUse == ContentUse::kClipboard && IsCut())
			formats.push_back(kCutSelection);
	}
	if (!fFiles.empty() || fMessage.HasData(kText, B_MIME_TYPE))
		formats.push_back(kText);
	return formats;
}

std::string
MessageContent::Bytes(const std::string& format) const
{
	if (format == kMessage)
		return Packed();
	if (format == kCopiedFiles)
		return MakeCopiedFiles({IsCut(), Paths()});
	if (format == kUriList)
		return MakeUriList(Paths());
	if (format == kCutSelection)
		return kCutSelectionText;
	return format == kText ? Text() : std::string();
}

bool
MessageContent::IsCut() const
{
	bool cut = false;
	return fMessage.FindBool("Cut", &cut) == B_OK && cut;
}

std::vector<std::string>
MessageContent::Paths() const
{
	std::vector<std::string> paths;
	paths.reserve(fFiles.size());
	for (const File& file : fFiles)
		paths.push_back(file.name == "/" ? file.name : fFolders[file.folder] + file.name);
	return paths;
}

std::string
MessageContent::Packed() const
{
	BMessage outer(kPacked);
	outer.AddString("machine", ThisMachine().c_str());
	for (const std::string& folder : fFolders)
		outer.AddData("folder", B_RAW_TYPE, folder.data(), static_cast<ssize_t>(folder.size()));
	outer.AddMessage("message", &fMessage);
	std::string image(static_cast<size_t>(std::max<ssize_t>(outer.FlattenedSize(), 0)), '\0');
	if (!image.empty())
		outer.Flatten(image.data(), static_cast<ssize_t>(image.size()));
	return image;
}

// Lines: the items of "text/plain", or else the paths.
std::string
MessageContent::Text() const
{
	std::vector<std::string> lines;
	const void* data = nullptr;
	ssize_t length = 0;
	for (int32 i = 0; fMessage.FindData(kText, B_MIME_TYPE, i, &data, &length) == B_OK; i++)
		lines.emplace_back(WithoutEnd({static_cast<const char*>(data), size_t(length)}));
	if (lines.empty())
		lines = Paths();
	std::string text;
	for (const std::string& line : lines)
		text += (text.empty() ? "" : "\n") + MakeUtf8(line);
	return text;
}

status_t
ReadContent(const std::vector<std::string>& formats, const FormatReader& read, ContentUse use,
	BMessage* message)
{
	*message = BMessage(B_SIMPLE_DATA);
	status_t status = B_NAME_NOT_FOUND;
	if (Has(formats, kMessage)) {
		std::string image;
		status = read(kMessage, &image);
		if (status == B_OK && UnpackMessage(image, message))
			return B_OK;
		*message = BMessage(B_SIMPLE_DATA);
	}
	if (GoesOn(status, *message) && use == ContentUse::kClipboard && Has(formats, kCopiedFiles))
		status = ReadCopied(read, message);
	if (GoesOn(status, *message) && Has(formats, kUriList))
		status = ReadUris(read, Has(formats, kCutSelection), use, message);
	if (GoesOn(status, *message) && Has(formats, kText))
		status = ReadText(read, message);
	return status == B_NAME_NOT_FOUND ? B_OK : status;
}

bool
UnpackMessage(const std::string& image, BMessage* message)
{
	BMessage outer;
	const char* machine = nullptr;
	if (outer.Unflatten(image.data(), static_cast<ssize_t>(image.size())) != B_OK ||
		outer.what != kPacked || outer.FindString("machine", &machine) != B_OK ||
		machine != ThisMachine() || outer.FindMessage("message", message) != B_OK)
		return false;
	RemovePointers(message, 1);
	const void* data = nullptr;
	ssize_t length = 0;
	for (int32 i = 0;
		 i < kMostFolders && outer.FindData("folder", B_RAW_TYPE, i, &data, &length) == B_OK; i++) {
		// Met once, the folder can be found by its numbers.
		const std::string path(static_cast<const char*>(data), static_cast<size_t>(length));
		if (path.find('\0') == path.npos && !path.empty() && path[0] == '/')
			BDirectory folder(path.c_str());
	}
	return true;
}

} // namespace BPrivate
