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

	// The picture of the first name that a theme has; null when none has one. A theme's own picture
	// of any of the names comes before that of a theme it inherits from. An icon of this size on a
	// screen that has so many pixels for its columns and rows.
	QImage Load(const std::vector<std::string>& names, int32 size, int32 pixels) const;
	// Whether a theme has a picture of this name, readable or not.
	bool Has(const std::string& name) const;

private:
	struct Folder {
		int32 Distance(int32 pixels) const; // how far its pictures are from so many

		std::string path;
		int32 smallest; // sizes, of `scale` pixels each
		int32 largest;
		int32 scale;
	};
	typedef std::vector<Folder> Theme;

	void AddTheme(const std::string& name, std::vector<std::string>& known);
	// The file's path, or empty. Scale 1 is a screen whose pixels are no finer than the icon's.
	std::string Find(const Theme& theme, const std::string& name, int32 pixels, int32 scale) const;

	std::vector<std::string> fBases;
	std::vector<Theme> fThemes; // in the order of search
};

// The name of the theme that the user chose in the settings of the desktop that runs, or else the
// best of those that are in the `bases`.
std::string ChosenThemeName(const std::vector<std::string>& bases);

} // namespace desktop
