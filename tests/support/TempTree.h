// SPDX-License-Identifier: MIT

// A folder of files for one test, made by relative path and removed in the end:
//
//	TempTree tree{{"a/b", Text("one")}, {"old", Text().Time(0)}, {"link", Link("a/b")}};
//
// Paths may be longer than PATH_MAX; folders on the way to a file are made with it. What the
// system refuses is thrown as std::system_error.

#pragma once

#include <storage/Directory.h>
#include <storage/EntryRef.h>

#include <ctime>
#include <initializer_list>
#include <string>
#include <utility>
#include <vector>

// What to put at a path.
struct TempItem {
	TempItem& Mode(mode_t value);
	TempItem& Time(time_t value); // of the last modification

	mode_t type;         // S_IFREG, S_IFDIR or S_IFLNK
	std::string content; // bytes of a file, target of a link
	mode_t mode;
	time_t time = -1; // as the system sets it
};

TempItem Text(std::string bytes = {});
TempItem Dir();
TempItem Link(std::string target);

// Names in the byte order in which folders are listed.
std::vector<std::string> Names(std::vector<std::string> names);

class TempTree {
public:
	typedef std::pair<std::string, TempItem> Item;

	TempTree(std::initializer_list<Item> items = {});
	~TempTree();
	TempTree(const TempTree&) = delete;
	TempTree& operator=(const TempTree&) = delete;

	void Add(const std::string& path, const TempItem& item);
	void Remove(const std::string& path); // a file or an empty folder
	void Rename(const std::string& from, const std::string& to);
	void SetMode(const std::string& path, mode_t mode);

	std::string Path(const std::string& path = ".") const; // absolute, of "." the tree's own
	entry_ref Ref(const std::string& path) const;
	BDirectory Folder(const std::string& path = ".") const;
	std::string Read(const std::string& path) const; // a file's bytes, a link's target
	std::vector<std::string> List(const std::string& path = ".") const; // in byte order

private:
	std::string fPath;
	int fRoot = -1;
};
