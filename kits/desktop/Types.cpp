// SPDX-License-Identifier: MIT

// Content types by way of GIO, and which icon stands for which type.

#include <desktop/Types.h>

#include "BuiltinIcons.h"
#include "GObjectPtr.h"
#include "IconTheme.h"
#include "Magic.h"

#include <gio/gio.h>

#include <algorithm>
#include <cstring>
#include <mutex>
#include <string_view>
#include <unordered_map>
#include <utility>

namespace desktop {

namespace {

// There are a few hundred on a machine, but files may name any in their attributes.
constexpr size_t kMaxAnswers = 2000;

// Otherwise GIO finds the folders of the database only when it first looks for a description, and
// then loads all of it a second time and loses parts of the first.
void
FindDatabase()
{
	[[maybe_unused]] static const char* const* sFolders = g_content_type_get_mime_dirs();
}

std::vector<std::string>
ReadMagic()
{
	std::vector<std::string> files;
	for (const char* const* folder = g_content_type_get_mime_dirs(); *folder != nullptr; folder++) {
		char* bytes;
		gsize length;
		const std::string path = std::string(*folder) + "/mime.cache";
		if (g_file_get_contents(path.c_str(), &bytes, &length, nullptr))
			files.emplace_back(GText(bytes).get(), length);
	}
	return files;
}

// As GIO decides it where no rule fits: no control characters in the beginning, or only harmless
// ones in all of it.
bool
LooksLikeText(std::string_view start)
{
	constexpr size_t kBeginning = 128;
	const auto isOdd = [](char c) {
		return static_cast<uint8>(c) < ' ' && c != '\t' && c != '\n' && c != '\r';
	};
	const auto isControl = [](char c) {
		return g_ascii_iscntrl(c) && !g_ascii_isspace(c) && c != '\b';
	};
	const std::string_view beginning = start.substr(0, kBeginning);
	return std::none_of(beginning.begin(), beginning.end(), isOdd) ||
		std::none_of(start.begin(), start.end(), isControl);
}

std::string
AskForDescription(const std::string& type)
{
	FindDatabase();
	const GText text(g_content_type_get_description(type.c_str()));
	// Of a type that it does not know GIO says something made of the type's own name.
	return text && strstr(text.get(), type.c_str()) == nullptr ? text.get() : "";
}

// The best first.
std::vector<std::string>
IconNames(const std::string& type)
{
	FindDatabase();
	std::vector<std::string> names;
	const GObjectPtr<GIcon> icon(g_content_type_get_icon(type.c_str()));
	if (icon && G_IS_THEMED_ICON(icon.get())) {
		const char* const* name = g_themed_icon_get_names(G_THEMED_ICON(icon.get()));
		for (; *name != nullptr; name++) {
			if (!g_str_has_suffix(*name, "-symbolic"))
				names.emplace_back(*name);
		}
	}
	return names;
}

struct IconRule {
	const char* beginning; // of a type's icon name
	BuiltinIcon icon;
};

// The first rule that fits one of a type's icon names.
constexpr IconRule kRules[] = {
	{"inode-directory", BuiltinIcon::kFolder},
	{"folder", BuiltinIcon::kFolder},
	{"inode-symlink", BuiltinIcon::kLink},
	{"package-", BuiltinIcon::kArchive},
	{"application-x-executable", BuiltinIcon::kProgram},
	{"application-x-sharedlib", BuiltinIcon::kProgram},
	{"application-x-desktop", BuiltinIcon::kProgram},
	{"application-vnd.appimage", BuiltinIcon::kProgram},
	{"application-x-ms-dos-executable", BuiltinIcon::kProgram},
	{"image-", BuiltinIcon::kImage},
	{"x-office-drawing", BuiltinIcon::kImage},
	{"audio-", BuiltinIcon::kAudio},
	{"video-", BuiltinIcon::kVideo},
	{"text-", BuiltinIcon::kText},
	{"x-office-", BuiltinIcon::kText},
	{"message-", BuiltinIcon::kText},
};

BuiltinIcon
BuiltinFor(const std::vector<std::string>& names)
{
	for (const IconRule& rule : kRules) {
		for (const std::string& name : names) {
			if (name.starts_with(rule.beginning))
				return rule.icon;
		}
	}
	return BuiltinIcon::kUnknown;
}

IconPixels
ToPixels(const QImage& image)
{
	const QImage straight = image.convertToFormat(QImage::Format_ARGB32);
	IconPixels icon;
	icon.size = straight.width();
	icon.pixels.resize(size_t(straight.width()) * size_t(straight.height()));
	// Four bytes a pixel: rows have no padding.
	std::memcpy(icon.pixels.data(), straight.constBits(), icon.pixels.size() * sizeof(uint32));
	return icon;
}

} // namespace

std::string
TypeByName(const char* name)
{
	if (name == nullptr || name[0] == '\0')
		return {};
	FindDatabase();
	const GText type(g_content_type_guess(name, nullptr, 0, nullptr));
	return g_content_type_is_unknown(type.get()) ? std::string() : type.get();
}

std::string
TypeByContent(const void* start, size_t length)
{
	FindDatabase();
	static const Magic sMagic(ReadMagic());
	const std::string_view bytes(static_cast<const char*>(start), length);
	if (sMagic.IsEmpty() || bytes.empty()) {
		const guchar* data = static_cast<const guchar*>(start);
		return GText(g_content_type_guess(nullptr, data, length, nullptr)).get();
	}
	if (const char* type = sMagic.TypeOf(bytes))
		return type;
	return LooksLikeText(bytes) ? "text/plain" : kUnknownType;
}

std::string
TypeDescription(const std::string& type)
{
	// GIO keeps its answers as well, but looks for aliases of the type each time.
	static std::mutex sLock;
	static std::unordered_map<std::string, std::string> sDescriptions;
	{
		std::lock_guard lock(sLock);
		auto found = sDescriptions.find(type);
		if (found != sDescriptions.end())
			return found->second;
	}
	std::string text = AskForDescription(type == kBrokenLinkType ? kLinkType : type);
	std::lock_guard lock(sLock);
	if (sDescriptions.size() >= kMaxAnswers)
		sDescriptions.clear();
	return sDescriptions.try_emplace(type, std::move(text)).first->second;
}

IconPixels
LoadTypeIcon(const std::string& type, int32 size, int32 pixels)
{
	const bool broken = type == kBrokenLinkType;
	std::vector<std::string> names = IconNames(broken ? kLinkType : type);
	if (broken || type == kLinkType)
		names.emplace_back("emblem-symbolic-link");
	QImage image = IconTheme::Chosen().Load(names, size, pixels);
	if (image.isNull())
		image = DrawBuiltinIcon(broken ? BuiltinIcon::kBrokenLink : BuiltinFor(names), pixels);
	return ToPixels(image);
}

bool
HasOwnIcon(const std::string& type)
{
	static std::mutex sLock;
	static std::unordered_map<std::string, bool> sAnswers;
	std::lock_guard lock(sLock);
	auto found = sAnswers.find(type);
	if (found != sAnswers.end())
		return found->second;
	std::string name = type;
	std::replace(name.begin(), name.end(), '/', '-');
	if (sAnswers.size() >= kMaxAnswers)
		sAnswers.clear();
	return sAnswers[type] = IconTheme::Chosen().Has(name);
}

} // namespace desktop
