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

namespace desktop {

namespace {

constexpr const char* kMainGroup = "Icon Theme";
constexpr const char* kLastTheme = "hicolor"; // every theme inherits from it in the end
constexpr const char* kDrawingSuffix = ".svg";
constexpr int kDefaultThreshold = 2;

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

// A drawing is decoded in the size wanted, a picture of another size scaled to fit.
QImage
LoadPicture(const std::string& path, int32 size)
{
	QImageReader reader(QString::fromLocal8Bit(path.c_str()));
	if (path.ends_with(kDrawingSuffix)) {
		if (!WaitForDesktop()) // painting one begins with the application's font
			return {};
		reader.setScaledSize(QSize(size, size));
	}
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
	fBases(std::move(bases)), fSuffixes{".png"}
{
	if (QImageReader::supportedImageFormats().contains("svg"))
		fSuffixes.emplace_back(kDrawingSuffix);
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
IconTheme::Load(const std::vector<std::string>& names, int32 size) const
{
	for (const Theme& theme : fThemes) {
		for (const std::string& name : names) {
			QImage image = LoadFrom(theme, name, size);
			if (!image.isNull())
				return image;
		}
	}
	return {};
}

int32
IconTheme::Folder::Distance(int32 size) const
{
	return std::max({smallest - size, size - largest, 0});
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
		if (size == 0 || Number(file.get(), group, "Scale", 1) != 1 ||
			!IsForFiles(Text(file.get(), group, "Context")))
			continue;
		const std::string type = Text(file.get(), group, "Type");
		Folder folder{{}, size, size};
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

QImage
IconTheme::LoadFrom(const Theme& theme, const std::string& name, int32 size) const
{
	std::string best;
	int32 bestDistance = INT32_MAX;
	for (const Folder& folder : theme) {
		const int32 distance = folder.Distance(size);
		if (distance >= bestDistance)
			continue;
		for (const std::string& suffix : fSuffixes) {
			const std::string path = folder.path + name + suffix;
			if (access(path.c_str(), R_OK) == 0) {
				best = path;
				bestDistance = distance;
				break;
			}
		}
	}
	return best.empty() ? QImage() : LoadPicture(best, size);
}

} // namespace desktop
