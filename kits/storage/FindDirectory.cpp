// SPDX-License-Identifier: MIT

#include <storage/FindDirectory.h>

#include <storage/FileDescriptor.h>
#include <storage/FolderPath.h>
#include <storage/Path.h>
#include <storage/UserFolders.h>

#include <fcntl.h>
#include <fstream>
#include <sys/stat.h>
#include <vector>

using namespace BPrivate;

namespace {

// What a folder's path begins with.
enum Base { kNone, kSystem, kHome, kConfig, kData, kDesktop };

struct Place {
	directory_which which;
	Base base;
	const char* path; // below the base
};

const Place kPlaces[] = {
	{B_DESKTOP_DIRECTORY, kDesktop, ""},
	{B_TRASH_DIRECTORY, kData, "/Trash/files"},

	{B_BEOS_DIRECTORY, kSystem, "/usr"},
	{B_BEOS_SYSTEM_DIRECTORY, kSystem, "/usr/lib"},
	{B_BEOS_ADDONS_DIRECTORY, kSystem, "/usr/libexec"},
	{B_BEOS_BOOT_DIRECTORY, kSystem, "/boot"},
	{B_BEOS_FONTS_DIRECTORY, kSystem, "/usr/share/fonts"},
	{B_BEOS_LIB_DIRECTORY, kSystem, "/usr/lib"},
	{B_BEOS_SERVERS_DIRECTORY, kSystem, "/usr/sbin"},
	{B_BEOS_APPS_DIRECTORY, kSystem, "/usr/share/applications"},
	{B_BEOS_BIN_DIRECTORY, kSystem, "/usr/bin"},
	{B_BEOS_ETC_DIRECTORY, kSystem, "/etc"},
	{B_BEOS_DOCUMENTATION_DIRECTORY, kSystem, "/usr/share/doc"},
	{B_BEOS_PREFERENCES_DIRECTORY, kSystem, "/etc/xdg"},
	{B_BEOS_TRANSLATORS_DIRECTORY, kSystem, "/usr/share/mime"},
	{B_BEOS_MEDIA_NODES_DIRECTORY, kNone, ""},
	{B_BEOS_SOUNDS_DIRECTORY, kSystem, "/usr/share/sounds"},

	{B_COMMON_DIRECTORY, kSystem, "/usr/local"},
	{B_COMMON_SYSTEM_DIRECTORY, kSystem, "/usr/local/lib"},
	{B_COMMON_ADDONS_DIRECTORY, kSystem, "/usr/local/libexec"},
	{B_COMMON_BOOT_DIRECTORY, kNone, ""},
	{B_COMMON_FONTS_DIRECTORY, kSystem, "/usr/local/share/fonts"},
	{B_COMMON_LIB_DIRECTORY, kSystem, "/usr/local/lib"},
	{B_COMMON_SERVERS_DIRECTORY, kSystem, "/usr/local/sbin"},
	{B_COMMON_BIN_DIRECTORY, kSystem, "/usr/local/bin"},
	{B_COMMON_ETC_DIRECTORY, kSystem, "/etc"},
	{B_COMMON_DOCUMENTATION_DIRECTORY, kSystem, "/usr/local/share/doc"},
	{B_COMMON_SETTINGS_DIRECTORY, kSystem, "/etc"},
	{B_COMMON_DEVELOP_DIRECTORY, kSystem, "/usr/local/include"},
	{B_COMMON_LOG_DIRECTORY, kSystem, "/var/log"},
	{B_COMMON_SPOOL_DIRECTORY, kSystem, "/var/spool"},
	{B_COMMON_TEMP_DIRECTORY, kSystem, "/tmp"},
	{B_COMMON_VAR_DIRECTORY, kSystem, "/var"},
	{B_COMMON_TRANSLATORS_DIRECTORY, kSystem, "/usr/local/share/mime"},
	{B_COMMON_MEDIA_NODES_DIRECTORY, kNone, ""},
	{B_COMMON_SOUNDS_DIRECTORY, kSystem, "/usr/local/share/sounds"},

	{B_USER_DIRECTORY, kHome, ""},
	{B_USER_CONFIG_DIRECTORY, kConfig, ""},
	{B_USER_ADDONS_DIRECTORY, kData, ""},
	{B_USER_BOOT_DIRECTORY, kConfig, "/autostart"},
	{B_USER_FONTS_DIRECTORY, kData, "/fonts"},
	{B_USER_LIB_DIRECTORY, kHome, "/.local/lib"},
	{B_USER_SETTINGS_DIRECTORY, kConfig, ""},
	{B_USER_DESKBAR_DIRECTORY, kData, "/applications"},
	{B_USER_PRINTERS_DIRECTORY, kHome, "/.cups"},
	{B_USER_TRANSLATORS_DIRECTORY, kData, "/mime"},
	{B_USER_MEDIA_NODES_DIRECTORY, kNone, ""},
	{B_USER_SOUNDS_DIRECTORY, kData, "/sounds"},

	{B_APPS_DIRECTORY, kSystem, "/usr/share/applications"},
	{B_PREFERENCES_DIRECTORY, kSystem, "/etc/xdg"},
	{B_UTILITIES_DIRECTORY, kSystem, "/usr/bin"},
};

// The desktop's own file tells where the user has put it: XDG_DESKTOP_DIR="$HOME/Desktop".
std::string
Desktop()
{
	constexpr std::string_view kKey = "XDG_DESKTOP_DIR=\"";
	constexpr std::string_view kHomeText = "$HOME";
	std::string home = UserHome();
	std::string desktop = home.empty() ? home : home + "/Desktop";
	std::ifstream file(UserConfig() + "/user-dirs.dirs");
	for (std::string line; std::getline(file, line);) {
		line.erase(0, line.find_first_not_of(" \t"));
		if (!line.starts_with(kKey))
			continue;
		std::string value;
		for (size_t i = kKey.size(); i < line.size() && line[i] != '"'; i++) {
			if (line[i] == '\\' && i + 1 < line.size())
				i++;
			value += line[i];
		}
		if (value.starts_with(kHomeText))
			value.replace(0, kHomeText.size(), home);
		if (value.starts_with('/'))
			desktop = value;
	}
	return desktop;
}

std::string
BasePath(Base base)
{
	switch (base) {
		case kHome:
			return UserHome();
		case kConfig:
			return UserConfig();
		case kData:
			return UserData();
		case kDesktop:
			return Desktop();
		default:
			return "";
	}
}

status_t
MakeFolders(const std::string& path, mode_t mode)
{
	// The first failure tells more than those that follow from it.
	int error = 0;
	for (size_t slash = 0; slash != path.npos;) {
		slash = path.find('/', slash + 1);
		if (mkdir(path.substr(0, slash).c_str(), mode) != 0 && errno != EEXIST && error == 0)
			error = errno;
	}
	struct stat status;
	if (stat(path.c_str(), &status) != 0)
		return StatusFromErrno(error != 0 ? error : errno);
	return S_ISDIR(status.st_mode) ? B_OK : B_NOT_A_DIRECTORY;
}

// Resolves the links in that part of a path that exists; the rest stays as it is.
std::string
Resolve(const std::string& path)
{
	size_t end = path.size();
	while (end > 1) {
		FileDescriptor folder;
		std::string resolved;
		if (OpenFolderAt(AT_FDCWD, std::string_view(path).substr(0, end), &folder) == B_OK &&
			GetFolderPath(folder.Get(), &resolved) == B_OK) {
			size_t rest = path.find_first_not_of('/', end);
			if (rest == path.npos)
				return resolved;
			return (resolved == "/" ? resolved : resolved + "/") + path.substr(rest);
		}
		end = path.rfind('/', end - 1);
	}
	return path;
}

} // namespace

status_t
find_directory(directory_which which, BPath* path, bool create, BVolume*)
{
	if (path == nullptr)
		return B_BAD_VALUE;
	path->Unset();
	const Place* place = nullptr;
	for (const Place& candidate : kPlaces) {
		if (candidate.which == which)
			place = &candidate;
	}
	if (place == nullptr)
		return B_BAD_VALUE;

	std::string base = BasePath(place->base);
	std::string text = base + place->path;
	if (place->base == kNone || (place->base != kSystem && base.empty()))
		return B_ENTRY_NOT_FOUND;
	if (which == B_TRASH_DIRECTORY) {
		// Callers ask without making: there always is a trash. One without the folder for its
		// records would lose where things came from.
		status_t status = MakeFolders(text, 0700);
		if (status == B_OK)
			status = MakeFolders(base + "/Trash/info", 0700);
		if (create && status != B_OK)
			return status;
	} else if (create) {
		status_t status = MakeFolders(text, place->base == kSystem ? 0755 : 0700);
		if (status != B_OK)
			return status;
	}
	return path->SetTo(Resolve(text).c_str());
}
