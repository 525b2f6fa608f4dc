// SPDX-License-Identifier: MIT

// Finds files in an icon theme and in those that it inherits from, as the desktop's standard for
// icon themes describes. Internal to this folder.
//
// Only folders with pictures for files are looked at. Reads the themes' descriptions when made;
// after that any thread may search.

#pragma once

#include <support/SupportDefs.h>

#include <QImage>

#include <string>
#include <vector>

namespace desktop {

class IconTheme {
public:
	// Themes are folders in the `bases`, of which the first have precedence.
	IconTheme(std::vector<std::string> bases, const std::string& name);

	// The theme that the user chose, from where this desktop keeps themes. Made at the first call.
	static const IconTheme& Chosen();

	// The picture of the first name that a theme has, in this size; null when none has one. A
	// theme's own picture of any of the names comes before that of a theme it inherits from.
	QImage Load(const std::vector<std::string>& names, int32 size) const;

private:
	struct Folder {
		int32 Distance(int32 size) const; // how far its pictures are from this size

		std::string path;
		int32 smallest;
		int32 largest;
	};
	typedef std::vector<Folder> Theme;

	void AddTheme(const std::string& name, std::vector<std::string>& known);
	QImage LoadFrom(const Theme& theme, const std::string& name, int32 size) const;

	std::vector<std::string> fBases;
	std::vector<std::string> fSuffixes; // of files that can be decoded, the best first
	std::vector<Theme> fThemes;         // in the order of search
};

// The name of the theme that the user chose in the settings of the desktop that runs, or else the
// best of those that are in the `bases`.
std::string ChosenThemeName(const std::vector<std::string>& bases);

} // namespace desktop
