// SPDX-License-Identifier: MIT

// Where the desktops of this world write down which icon theme the user chose.

#include "IconTheme.h"

#include "GObjectPtr.h"

#include <gio/gio.h>

#include <cstdlib>
#include <fstream>
#include <iterator>
#include <sys/stat.h>

namespace desktop {

namespace {

// The value of a key in a file of groups of "key=value". GLib's reader refuses the whole file for
// the groups within groups that KDE writes.
std::string
ValueIn(const std::string& path, const std::string& group, const std::string& key)
{
	std::ifstream file(path);
	bool inGroup = false;
	for (std::string line; std::getline(file, line);) {
		if (line.starts_with('['))
			inGroup = line == "[" + group + "]";
		else if (inGroup && line.starts_with(key + "="))
			return line.substr(key.size() + 1);
	}
	return {};
}

// From the user's settings, else the system's.
std::string
FromFile(const std::string& name, const std::string& group, const std::string& key)
{
	std::string value = ValueIn(g_get_user_config_dir() + ("/" + name), group, key);
	const char* const* folder = g_get_system_config_dirs();
	for (; value.empty() && *folder != nullptr; folder++)
		value = ValueIn(*folder + ("/" + name), group, key);
	return value;
}

// From the settings database. Asking it for a schema that is not installed would end the process.
std::string
FromSettings(const char* schemaName)
{
	GSettingsSchemaSource* source = g_settings_schema_source_get_default();
	if (source == nullptr)
		return {};
	const std::unique_ptr<GSettingsSchema, GRelease<g_settings_schema_unref>> schema(
		g_settings_schema_source_lookup(source, schemaName, TRUE));
	if (!schema || !g_settings_schema_has_key(schema.get(), "icon-theme"))
		return {};
	const GObjectPtr<GSettings> settings(g_settings_new_full(schema.get(), nullptr, nullptr));
	return GText(g_settings_get_string(settings.get(), "icon-theme")).get();
}

// Xfce: <property name="IconThemeName" type="string" value="NAME"/>
std::string
FromXfce()
{
	std::ifstream file(
		std::string(g_get_user_config_dir()) + "/xfce4/xfconf/xfce-perchannel-xml/xsettings.xml");
	const std::string text(std::istreambuf_iterator<char>(file), {});
	const std::string kValue = "value=\"";
	size_t at = text.find("\"IconThemeName\"");
	const size_t end = text.find('>', at);
	at = at == std::string::npos ? at : text.find(kValue, at);
	if (at == std::string::npos || at > end)
		return {};
	at += kValue.size();
	return text.substr(at, text.find('"', at) - at);
}

std::string
OfDesktop(const std::string& desktop)
{
	auto is = [&](const char* name) { return desktop.find(name) != std::string::npos; };
	if (desktop.empty())
		return {};
	if (is("KDE")) {
		const std::string name = FromFile("kdeglobals", "Icons", "Theme");
		return name.empty() ? "breeze" : name;
	}
	if (is("LXQt"))
		return FromFile("lxqt/lxqt.conf", "General", "icon_theme");
	if (is("XFCE"))
		return FromXfce();
	if (is("Cinnamon"))
		return FromSettings("org.cinnamon.desktop.interface");
	if (is("MATE"))
		return FromSettings("org.mate.interface");
	return FromSettings("org.gnome.desktop.interface");
}

bool
IsInstalled(const std::vector<std::string>& bases, const std::string& theme)
{
	for (const std::string& base : bases) {
		struct stat status;
		if (!theme.empty() && stat((base + "/" + theme + "/index.theme").c_str(), &status) == 0)
			return true;
	}
	return false;
}

} // namespace

std::string
ChosenThemeName(const std::vector<std::string>& bases)
{
	const char* desktop = std::getenv("XDG_CURRENT_DESKTOP");
	std::string name = OfDesktop(desktop != nullptr ? desktop : "");
	if (IsInstalled(bases, name))
		return name;
	// Small desktops have no settings of their own and leave this to the toolkit's.
	name = FromFile("gtk-3.0/settings.ini", "Settings", "gtk-icon-theme-name");
	if (IsInstalled(bases, name))
		return name;
	for (const char* usual :
		{"Adwaita", "breeze", "Papirus", "Tango", "elementary-xfce", "gnome", "oxygen"}) {
		if (IsInstalled(bases, usual))
			return usual;
	}
	return {};
}

} // namespace desktop
