// SPDX-License-Identifier: MIT

// Feeds what other programs may have put on the clipboard, or drag, to the reader of such contents.
// What comes of it has refs that name entries of folders, is a copy or a cut but not both, and is
// the same when it goes out and comes in again.
//
//	clipboard_fuzz CORPUS -max_total_time=60
//
// The first byte of an input tells which formats there are; their texts follow, with a mark
// between.

#include <app/MessagePrivate.h>
#include <storage/EntryRef.h>
#include <support/TypeConstants.h>

#include "kits/app/MessageContent.h"

#include <cstdlib>
#include <fstream>
#include <map>

namespace {

using namespace BPrivate;
using namespace desktop::format;

constexpr char kMark = '\x1e';
constexpr unsigned kOfOurs = 0x20; // the texts are made part of a message as we send it

typedef std::map<std::string, std::string> Texts;

void
Require(bool promise)
{
	if (!promise)
		std::abort();
}

Texts
ReadInput(unsigned formats, std::string_view rest)
{
	Texts texts;
	for (const char* format : {kMessage, kCopiedFiles, kUriList, kCutSelection, kText}) {
		const size_t end = std::min(rest.find(kMark), rest.size());
		if ((formats & 1) != 0)
			texts[format] = rest.substr(0, end);
		rest.remove_prefix(std::min(end + 1, rest.size()));
		formats >>= 1;
	}
	return texts;
}

// As another program of the kits would send it.
std::string
Pack(const std::string& text)
{
	std::string machine;
	std::getline(std::ifstream("/proc/sys/kernel/random/boot_id"), machine);
	const entry_ref ref(1, 2, text.c_str());
	BMessage inner;
	std::string image = text;
	if (image.size() >= sizeof(ImageHead)) {
		SealImage(image.data(), image.size());
		inner.Unflatten(image.data(), static_cast<ssize_t>(image.size()));
	}
	inner.AddRef("refs", &ref);
	inner.AddData(kText, B_MIME_TYPE, text.data(), static_cast<ssize_t>(text.size()));
	BMessage outer('KPck');
	outer.AddString("machine", machine.c_str());
	outer.AddData("folder", B_RAW_TYPE, text.data(), static_cast<ssize_t>(text.size()));
	outer.AddMessage("message", &inner);
	image.resize(static_cast<size_t>(outer.FlattenedSize()));
	outer.Flatten(image.data(), static_cast<ssize_t>(image.size()));
	return image;
}

BMessage
Read(const Texts& texts, ContentUse use)
{
	std::vector<std::string> formats;
	for (const auto& [format, text] : texts)
		formats.push_back(format);
	std::map<std::string, int> asked;
	auto read = [&](const std::string& format, std::string* bytes) {
		Require(texts.contains(format) && ++asked[format] == 1);
		*bytes = texts.at(format);
		return B_OK;
	};
	BMessage message;
	Require(ReadContent(formats, read, use, &message) == B_OK);
	return message;
}

int32
CountRefs(const BMessage& message)
{
	int32 count = 0;
	for (entry_ref ref; message.FindRef("refs", count, &ref) == B_OK; count++)
		Require(ref.name != nullptr);
	return count;
}

void
CheckForeign(const BMessage& message, ContentUse use)
{
	if (message.IsEmpty())
		return;
	Require(message.what == B_SIMPLE_DATA || message.what == B_MIME_DATA);
	const int32 count = CountRefs(message);
	entry_ref ref;
	for (int32 i = 0; message.FindRef("refs", i, &ref) == B_OK; i++) {
		const std::string name = ref.name;
		Require(name == "/" || (!name.empty() && name.find('/') == name.npos));
	}
	const bool isPasted = message.HasBool("Cut") || message.HasBool("Copy");
	Require(!(message.HasBool("Cut") && message.HasBool("Copy")));
	Require(isPasted == (use == ContentUse::kClipboard && count > 0));
	// Out and in again.
	const MessageContent content(message, use);
	Texts texts;
	for (const std::string& format : content.Formats()) {
		if (format != kMessage)
			texts[format] = content.Bytes(format);
	}
	const BMessage again = Read(texts, use);
	Require(CountRefs(again) == count);
	Require(again.HasBool("Cut") == message.HasBool("Cut"));
}

} // namespace

extern "C" int
LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
	if (size == 0)
		return 0;
	Texts texts = ReadInput(data[0], {reinterpret_cast<const char*>(data) + 1, size - 1});
	if ((data[0] & kOfOurs) != 0)
		texts[kMessage] = Pack(texts[kMessage]);
	for (const ContentUse use : {ContentUse::kClipboard, ContentUse::kDrag}) {
		CountRefs(Read(texts, use));
		Texts foreign = texts;
		foreign.erase(kMessage);
		CheckForeign(Read(foreign, use), use);
	}
	return 0;
}
