// SPDX-License-Identifier: MIT

// Messages in drags and on the clipboard: what other programs see of ours, and what we make of
// theirs. For the sources of this kit and the windows only.

#pragma once

#include <app/Message.h>
#include <app/Messenger.h>
#include <desktop/Content.h>

#include <functional>
#include <map>
#include <optional>

namespace BPrivate {

enum class ContentUse { kDrag, kClipboard };

// A message of ours. The paths of its refs' folders are looked up when it is made, by the thread
// that makes it; texts are made when another program asks for them.
class MessageContent : public desktop::Content {
public:
	MessageContent(const BMessage& message, ContentUse use, const BMessenger& replyTo = {});

	const BMessage& Message() const { return fMessage; }
	const BMessenger& ReplyTo() const { return fReplyTo; }

	// Content
	std::vector<std::string> Formats() const override;
	std::string Bytes(const std::string& format) const override;

private:
	struct File {
		size_t folder; // in fFolders
		std::string name;
	};

	std::optional<size_t> FolderOf(const entry_ref& ref);
	bool IsCut() const;
	std::vector<std::string> Paths() const;
	std::string Packed() const;
	std::string Text() const;

	const BMessage fMessage;
	const ContentUse fUse;
	const BMessenger fReplyTo;
	std::vector<std::string> fFolders; // paths with a slash at the end, each once
	std::vector<File> fFiles;          // of "refs", where the folder is known
	// For the constructor:
	std::map<std::pair<dev_t, ino_t>, std::optional<size_t>> fFolderIndex;
	std::optional<std::pair<dev_t, ino_t>> fLastFolder;
	std::optional<size_t> fLastIndex;
};

// What the contents of another program mean to us; no fields when they mean nothing. `read` gets
// the bytes of a format: anything but B_OK and B_NAME_NOT_FOUND means not to ask any more, and is
// returned. Each format is asked for once at most, in most cases only one.
// Looks folders up on the disk: not for the GUI thread.
typedef std::function<status_t(const std::string& format, std::string* bytes)> FormatReader;
status_t ReadContent(const std::vector<std::string>& formats, const FormatReader& read,
	ContentUse use, BMessage* message);

// The image of a message between programs of these kits: with the folders of its refs, which the
// other program may never have met. False for anything else, and for an image from another
// machine. Pointers are left out as messengers are: they would point anywhere.
bool UnpackMessage(const std::string& image, BMessage* message);

} // namespace BPrivate
