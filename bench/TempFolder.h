// SPDX-License-Identifier: MIT

// A folder of a benchmark where temporary files are (`TMPDIR` chooses the file system).

#pragma once

#include <storage/Entry.h>

#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string>

class TempFolder {
public:
	explicit TempFolder(const std::string& name)
	{
		path = std::filesystem::temp_directory_path() / ("bench-" + name + "-XXXXXX");
		if (mkdtemp(path.data()) == nullptr) {
			perror(path.c_str());
			exit(1);
		}
	}
	~TempFolder() { std::filesystem::remove_all(path); }
	TempFolder(const TempFolder&) = delete;
	TempFolder& operator=(const TempFolder&) = delete;

	entry_ref Ref(const std::string& below = "") const
	{
		entry_ref ref;
		get_ref_for_path((path + "/" + below).c_str(), &ref);
		return ref;
	}

	std::string path;
};
