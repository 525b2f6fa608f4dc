// SPDX-License-Identifier: MIT

// The search in icon themes, and the decoding of what is found.

#include "IconTheme.h"

#include "GObjectPtr.h"

#include <desktop/GuiThread.h>

#include <QImageReader>

#include <glib.h>

#include <algorithm>
#include <cstdlib>
#include <unistd.h>
#include <utility>

namespace desktop {

namespace {

constexpr const char* kMainGroup = "Icon Theme";
constexpr const char* kLastTheme = "hicolor"; // every theme inherits from it in the end
constexpr const char* kPictureSuffix = ".png";
constexpr const char* kDrawingSuffix = ".svg";
constexpr int kDefaultThreshold = 2;
constexpr int32 kMaxScale = 8;

typedef std::unique_ptr<GKeyFile, GRelease<g_key_file_unref>> KeyFile;

std::vector<std::string>
List(GKeyFile* file, const char* group, const char* key)
{
	std::vector<std::string> items;
	const std::unique_ptr<char*, GRelease<g_strfreev>> values(
		g_key_file_get_string_list(file, group, key, nullptr, nullptr));
	for (char** value = values.get(); value != nullptr && *value != nullptr; value++)
		items.emplace_back(*value);
	return items;
}

std::string
Text(GKeyFile* file, const char* group, const char* key)
{
	const GText text(g_key_file_get_string(file, group, key, nullptr));
	return text ? text.get() : "";
}

int32
Number(GKeyFile* file, const char* group, const char* key, int32 otherwise)
{
	const int value = g_key_file_get_integer(file, group, key, nullptr);
	return value > 0 ? value : otherwise;
}

// Folders that say nothing about their pictures may have any.
bool
IsForFiles(const std::string& context)
{
	return context.empty() || context == "MimeTypes" || context == "Places" ||
		context == "FileSystems" || context == "Emblems";
}

std::vector<std::string>
IconFolders()
{
	std::vector<std::string> folders;
	if (const char* home = std::getenv("HOME"))
		folders.push_back(std::string(home) + "/.icons");
	folders.push_back(std::string(g_get_user_data_dir()) + "/icons");
	for (const char* const* folder = g_get_system_data_dirs(); *folder != nullptr; folder++)
		folders.push_back(std::string(*folder) + "/icons");
	return folders;
}

// A package of its own (qt6-svg-plugins or the like). Not asked before there is a drawing, since
// that loads all decoders. Qt searches them in folders that it changes while the desktop starts,
// and guards against nobody who looks meanwhile.
bool
CanReadDrawings()
{
	static const bool sCan =
		WaitForDesktop() && QImageReader::supportedImageFormats().contains("svg");
	return sCan;
}

// A drawing is decoded in the size wanted, a picture of another size scaled to fit.
QImage
LoadPicture(const std::string& path, int32 size)
{
	if (!WaitForDesktop()) // for the decoders, and for the font with which a drawing begins
		return {};
	QImageReader reader(QString::fromLocal8Bit(path.c_str()));
	if (path.ends_with(kDrawingSuffix))
		reader.setScaledSize(QSize(size, size));
	const QImage image = reader.read();
	if (image.isNull() || image.size() == QSize(size, size))
		return image;
	const QImage scaled = image.convertToFormat(QImage::Format_ARGB32_Premultiplied)
							  .scaled(size, size, Qt::KeepAspectRatio, Qt::SmoothTransformation);
	// In the middle; what lies outside comes out transparent.
	return scaled.copy((scaled.width() - size) / 2, (scaled.height() - size) / 2, size, size);
}

} // namespace

IconTheme::IconTheme(std::vector<std::string> bases, const std::string& name) :
	fBases(std::move(bases))
{
	std::vector<std::string> known;
	AddTheme(name, known);
	AddTheme(kLastTheme, known);
}

const IconTheme&
IconTheme::Chosen()
{
	static const IconTheme sTheme(IconFolders(), ChosenThemeName(IconFolders()));
	return sTheme;
}

QImage
IconTheme::Load(const std::vector<std::string>& names, int32 size, int32 pixels) const
{
	const int32 scale = std::max(1, (pixels + size - 1) / size);
	for (const Theme& theme : fThemes) {
		for (const std::string& name : names) {
			const std::string path = Find(theme, name, pixels, scale);
			QImage image = path.empty() ? QImage() : LoadPicture(path, pixels);
			if (!image.isNull())
				return image;
		}
	}
	return {};
}

bool
IconTheme::Has(const std::string& name) const
{
	return std::any_of(fThemes.begin(), fThemes.end(),
		[&](const Theme& theme) { return !Find(theme, name, 1, 1).empty(); });
}

int32
IconTheme::Folder::Distance(int32 pixels) const
{
	return std::max({smallest * scale - pixels, pixels - largest * scale, 0});
}

// `known` are the themes met so far, since themes may inherit from each other in a circle.
void
IconTheme::AddTheme(const std::string& name, std::vector<std::string>& known)
{
	// The name of a theme is one folder's name, whatever a settings file may say.
	if (name.empty() || name.find('/') != std::string::npos ||
		std::find(known.begin(), known.end(), name) != known.end())
		return;
	known.push_back(name);
	const KeyFile file(g_key_file_new());
	g_key_file_set_list_separator(file.get(), ',');
	const auto described = std::find_if(fBases.begin(), fBases.end(), [&](const auto& base) {
		return g_key_file_load_from_file(
			file.get(), (base + "/" + name + "/index.theme").c_str(), G_KEY_FILE_NONE, nullptr);
	});
	if (described == fBases.end())
		return;

	Theme theme;
	for (const std::string& subfolder : List(file.get(), kMainGroup, "Directories")) {
		const char* group = subfolder.c_str();
		const int32 size = Number(file.get(), group, "Size", 0);
		if (size == 0 || !IsForFiles(Text(file.get(), group, "Context")))
			continue;
		const std::string type = Text(file.get(), group, "Type");
		Folder folder{{}, size, size, std::min(Number(file.get(), group, "Scale", 1), kMaxScale)};
		if (type == "Scalable") {
			folder.smallest = Number(file.get(), group, "MinSize", size);
			folder.largest = Number(file.get(), group, "MaxSize", size);
		} else if (type != "Fixed") {
			const int32 threshold = Number(file.get(), group, "Threshold", kDefaultThreshold);
			folder.smallest = size - threshold;
			folder.largest = size + threshold;
		}
		for (const std::string& base : fBases) {
			folder.path = base + "/" + name + "/" + subfolder + "/";
			if (access(folder.path.c_str(), X_OK) == 0)
				theme.push_back(folder);
		}
	}
	fThemes.push_back(std::move(theme));
	for (const std::string& parent : List(file.get(), kMainGroup, "Inherits")) {
		if (parent != kLastTheme)
			AddTheme(parent, known);
	}
}

std::string
IconTheme::Find(const Theme& theme, const std::string& name, int32 pixels, int32 scale) const
{
	std::string best;
	// Of folders that are equally near, one whose pictures were drawn for such a screen.
	std::pair<int32, bool> bestDistance(INT32_MAX, true);
	for (const Folder& folder : theme) {
		const std::pair<int32, bool> distance(folder.Distance(pixels), folder.scale != scale);
		if (distance >= bestDistance)
			continue;
		for (const char* suffix : {kPictureSuffix, kDrawingSuffix}) {
			const std::string path = folder.path + name + suffix;
			if (access(path.c_str(), R_OK) == 0 &&
				(suffix != kDrawingSuffix || CanReadDrawings())) {
				best = path;
				bestDistance = distance;
				break;
			}
		}
	}
	return best;
}

} // namespace desktop
