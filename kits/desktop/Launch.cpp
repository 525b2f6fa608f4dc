// SPDX-License-Identifier: MIT

#include <desktop/Launch.h>

#include "GObjectPtr.h"
#include "OwnVariables.h"

#include <support/Errors.h>

#include <gio/gdesktopappinfo.h>

#include <csignal>
#include <unistd.h>

namespace desktop {

namespace {

using KeyFile = std::unique_ptr<GKeyFile, GRelease<g_key_file_free>>;
using TextArray = std::unique_ptr<char*, GRelease<g_strfreev>>;

// In the child before it becomes the program: only calls that are safe there.
void
SetUpChild(void*)
{
	sigset_t none;
	sigemptyset(&none);
	sigprocmask(SIG_SETMASK, &none, nullptr);
	std::signal(SIGPIPE, SIG_DFL);
	setsid(); // Control+C in our terminal is not for it
}

GObjectPtr<GAppLaunchContext>
NewContext()
{
	GObjectPtr<GAppLaunchContext> context(g_app_launch_context_new());
	for (const OwnVariable& variable : OwnVariables()) {
		if (variable.former)
			g_app_launch_context_setenv(
				context.get(), variable.name.c_str(), variable.former->c_str());
		else
			g_app_launch_context_unsetenv(context.get(), variable.name.c_str());
	}
	return context;
}

void
StoreTeam(GDesktopAppInfo*, GPid process, void* team)
{
	if (team != nullptr)
		*static_cast<team_id*>(team) = process;
}

// GIO's own launching asks the session bus first, however long that takes to answer: this way it
// only ever starts the program.
status_t
Launch(GDesktopAppInfo* application, const char* uri, team_id* team)
{
	const GObjectPtr<GAppLaunchContext> context = NewContext();
	GList uris{const_cast<char*>(uri), nullptr, nullptr};
	GError* error = nullptr;
	if (g_desktop_app_info_launch_uris_as_manager(application, uri != nullptr ? &uris : nullptr,
			context.get(), G_SPAWN_SEARCH_PATH, SetUpChild, nullptr, StoreTeam, team, &error))
		return B_OK;
	const GErrorPtr owned(error);
	return error != nullptr && error->domain == G_SPAWN_ERROR ? B_LAUNCH_FAILED_EXECUTABLE
															  : B_LAUNCH_FAILED;
}

bool
ListsDefault(const std::string& folder, const std::string& type)
{
	const KeyFile file(g_key_file_new());
	return g_key_file_load_from_file(
			   file.get(), (folder + "/mimeapps.list").c_str(), G_KEY_FILE_NONE, nullptr) &&
		g_key_file_has_key(file.get(), "Default Applications", type.c_str(), nullptr);
}

// GIO passes over applications whose program is not there. That one was chosen tells apart what is
// missing.
bool
HasChosenDefault(const std::string& type)
{
	if (ListsDefault(g_get_user_config_dir(), type) ||
		ListsDefault(std::string(g_get_user_data_dir()) + "/applications", type))
		return true;
	for (const char* const* folder = g_get_system_config_dirs(); *folder != nullptr; folder++) {
		if (ListsDefault(*folder, type))
			return true;
	}
	for (const char* const* folder = g_get_system_data_dirs(); *folder != nullptr; folder++) {
		if (ListsDefault(std::string(*folder) + "/applications", type))
			return true;
	}
	return false;
}

// GDesktopAppInfo is the only kind of application that GIO has here. Null with the reason.
GObjectPtr<GDesktopAppInfo>
DefaultFor(const std::string& type, std::string* program, status_t* status)
{
	GObjectPtr<GDesktopAppInfo> application(
		reinterpret_cast<GDesktopAppInfo*>(g_app_info_get_default_for_type(type.c_str(), FALSE)));
	if (!application) {
		*status = HasChosenDefault(type) ? B_LAUNCH_FAILED_FILES_APP_NOT_FOUND
										 : B_LAUNCH_FAILED_NO_PREFERRED_APP;
		return nullptr;
	}
	// What GIO keeps of an application may be older than the program's removal. One without a
	// program is called over the session bus, which may hang.
	const char* executable = g_app_info_get_executable(G_APP_INFO(application.get()));
	const GText path(executable != nullptr ? g_find_program_in_path(executable) : nullptr);
	if (!path) {
		*status = B_LAUNCH_FAILED_FILES_APP_NOT_FOUND;
		return nullptr;
	}
	*program = path.get();
	*status = B_OK;
	return application;
}

} // namespace

bool
IsProgramType(const std::string& type)
{
	// Programs that may be loaded anywhere in memory look like libraries.
	for (const char* each : {"application/x-executable", "application/x-sharedlib"}) {
		if (g_content_type_is_a(type.c_str(), each))
			return true;
	}
	return false;
}

bool
IsTextType(const std::string& type)
{
	return g_content_type_is_a(type.c_str(), "text/plain");
}

bool
IsDesktopFileType(const std::string& type)
{
	return g_content_type_is_a(type.c_str(), "application/x-desktop");
}

status_t
RunProgram(const std::string& path, team_id* team)
{
	const GObjectPtr<GAppLaunchContext> context = NewContext();
	const TextArray environment(g_app_launch_context_get_environment(context.get()));
	const GText folder(g_path_get_dirname(path.c_str()));
	char* arguments[] = {const_cast<char*>(path.c_str()), nullptr};
	GPid process = -1;
	if (!g_spawn_async(folder.get(), arguments, environment.get(), G_SPAWN_DEFAULT, SetUpChild,
			nullptr, &process, nullptr))
		return B_LAUNCH_FAILED_EXECUTABLE;
	StoreTeam(nullptr, process, team);
	return B_OK;
}

status_t
RunDesktopFile(const std::string& path, team_id* team)
{
	const KeyFile file(g_key_file_new());
	if (!g_key_file_load_from_file(file.get(), path.c_str(), G_KEY_FILE_NONE, nullptr))
		return B_LAUNCH_FAILED;
	const GObjectPtr<GDesktopAppInfo> application(g_desktop_app_info_new_from_keyfile(file.get()));
	if (application)
		return Launch(application.get(), nullptr, team);
	const bool namesProgram = g_key_file_has_key(
		file.get(), G_KEY_FILE_DESKTOP_GROUP, G_KEY_FILE_DESKTOP_KEY_EXEC, nullptr);
	return namesProgram ? B_LAUNCH_FAILED_EXECUTABLE : B_LAUNCH_FAILED;
}

status_t
FindDefaultProgram(const std::string& type, std::string* program)
{
	status_t status;
	DefaultFor(type, program, &status);
	return status;
}

status_t
OpenByDefault(const std::string& uri, const std::string& type, team_id* team)
{
	std::string program;
	status_t status;
	const GObjectPtr<GDesktopAppInfo> application = DefaultFor(type, &program, &status);
	return application ? Launch(application.get(), uri.c_str(), team) : status;
}

} // namespace desktop
