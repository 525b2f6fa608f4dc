// SPDX-License-Identifier: MIT

// Feeds bytes to BMessage::Unflatten(), as they are and with a right head around them, which no
// chance would find. What is taken must flatten to the same bytes, and every accessor must do.
//
//	unflatten_fuzz CORPUS -max_total_time=60
//
// A corpus folder that is named first and empty gets some good images to start from.

#include <app/Message.h>
#include <app/MessagePrivate.h>

#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

namespace {

void
Save(const std::filesystem::path& path, const BMessage& message)
{
	std::vector<char> image(static_cast<size_t>(message.FlattenedSize()));
	message.Flatten(image.data(), static_cast<ssize_t>(image.size()));
	std::ofstream(path, std::ios::binary)
		.write(image.data(), static_cast<std::streamsize>(image.size()));
}

void
SaveSeeds(const std::filesystem::path& folder)
{
	const entry_ref ref(1, 2, "name");
	BMessage message('seed');
	Save(folder / "empty", message);
	message.AddBool("a", true);
	message.AddInt32("b", 1);
	message.AddInt32("b", 2);
	message.AddInt64("c", 3);
	message.AddRect("d", BRect(1, 2, 3, 4));
	message.AddString("e", "text");
	message.AddRef("f", &ref);
	message.AddData("g", B_RAW_TYPE, "bytes", 5);
	message.AddPointer("h", nullptr);
	Save(folder / "flat", message);
	for (int i = 0; i < 3; i++)
		message.AddMessage("inner", &message);
	Save(folder / "nested", message);
}

// Reads every item by the accessors of all types.
void
ReadAll(const BMessage& message)
{
	for (const BPrivate::Field& field : BPrivate::MessageAccess::Fields(message).All()) {
		const char* name = field.name.c_str();
		for (int32 i = 0; i < field.Count(); i++) {
			bool truth = false;
			BRect rect;
			entry_ref ref;
			BMessage inner;
			const char* text = nullptr;
			const void* data = nullptr;
			ssize_t length = 0;
			message.FindBool(name, i, &truth);
			message.FindRect(name, i, &rect);
			message.FindRef(name, i, &ref);
			if (message.FindString(name, i, &text) == B_OK && std::strlen(text) > 0x7fffffff)
				std::abort();
			message.FindData(name, B_ANY_TYPE, i, &data, &length);
			if (message.FindMessage(name, i, &inner) == B_OK)
				ReadAll(inner);
		}
	}
}

void
Check(const std::vector<char>& image)
{
	BMessage message('full');
	message.AddString("old", "value");
	if (message.Unflatten(image.data(), static_cast<ssize_t>(image.size())) != B_OK) {
		if (!message.IsEmpty())
			std::abort();
		return;
	}
	ReadAll(message);
	const ssize_t size = message.FlattenedSize();
	if (size <= 0 || static_cast<size_t>(size) > image.size())
		std::abort();
	std::vector<char> again(static_cast<size_t>(size));
	if (message.Flatten(again.data(), size) != B_OK ||
		std::memcmp(again.data(), image.data(), again.size()) != 0)
		std::abort();
}

} // namespace

extern "C" int
LLVMFuzzerInitialize(int* argc, char*** argv)
{
	const std::filesystem::path folder = *argc > 1 ? (*argv)[1] : "";
	if (std::filesystem::is_directory(folder) && std::filesystem::is_empty(folder))
		SaveSeeds(folder);
	return 0;
}

extern "C" int
LLVMFuzzerTestOneInput(const unsigned char* data, size_t size)
{
	std::vector<char> image(data, data + size);
	Check(image);
	if (image.size() >= sizeof(BPrivate::ImageHead)) {
		BPrivate::SealImage(image.data(), image.size());
		Check(image);
	}
	return 0;
}
