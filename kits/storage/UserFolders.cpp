// SPDX-License-Identifier: MIT

#include <storage/UserFolders.h>

#include <cstdlib>
#include <pwd.h>
#include <unistd.h>

namespace BPrivate {

namespace {

// The value of an environment variable that holds an absolute path; else empty.
std::string
PathFromEnvironment(const char* variable)
{
	const char* value = getenv(variable);
	return value != nullptr && value[0] == '/' ? value : "";
}

std::string
HomeOr(const char* variable, const char* belowHome)
{
	std::string path = PathFromEnvironment(variable);
	if (!path.empty())
		return path;
	path = UserHome();
	return path.empty() ? path : path + belowHome;
}

} // namespace

std::string
UserHome()
{
	std::string home = PathFromEnvironment("HOME");
	if (!home.empty())
		return home;
	char buffer[4096];
	struct passwd record;
	struct passwd* found = nullptr;
	getpwuid_r(getuid(), &record, buffer, sizeof(buffer), &found);
	return found != nullptr && found->pw_dir[0] == '/' ? found->pw_dir : "";
}

std::string
UserConfig()
{
	return HomeOr("XDG_CONFIG_HOME", "/.config");
}

std::string
UserData()
{
	return HomeOr("XDG_DATA_HOME", "/.local/share");
}

} // namespace BPrivate
