// SPDX-License-Identifier: MIT

// The content type of a file as it stands on the disk, for BNodeInfo.

#pragma once

#include <support/SupportDefs.h>

#include <string>
#include <sys/types.h>

namespace BPrivate {

// What is known of a node without being open for reading.
class NodeType {
public:
	// The path is that of the node, or of a descriptor of it below /proc/self/fd. `name` is what
	// it is called, or empty to find that out from the path when it matters. `mode` is from its
	// status: links and special files have no attributes.
	NodeType(std::string path, std::string name, mode_t mode);
	// An entry of a folder, given by a descriptor that stays open as long as this is asked.
	NodeType(int folder, const char* name, mode_t mode);
	NodeType() = default;

	mode_t Mode() const { return fMode; }
	bool IsBrokenLink() const;

	// From the type attribute, the desktop's attribute of that kind, and, for regular files alone,
	// name or leading bytes. B_ENTRY_NOT_FOUND.
	status_t GetType(std::string* type) const;

	// The signature of the program that opens this very node; false when it names none.
	bool GetPreferredApp(std::string* signature) const;

	// The value of an attribute that has just this length. One that is missing costs nothing.
	bool ReadFixed(const char* attribute, void* buffer, size_t length) const;

private:
	void ListAttributes();
	std::string Path() const;
	bool HasAttribute(const char* attribute) const;
	bool ReadText(const char* attribute, std::string* text) const;
	std::string TypeOfContent() const;

	int fFolder = -1;
	std::string fPath; // empty when the folder is given
	std::string fName;
	mode_t fMode = 0;
	std::string fAttributes; // names, each with its NUL; from one system call
};

} // namespace BPrivate
