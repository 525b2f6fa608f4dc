// SPDX-License-Identifier: MIT

// BNode: a file, folder or link itself, wherever it is moved, and its attributes.
//
// Attribute N is the extended attribute "user.N" with the value as it is. Its type code stands in
// a second one, "user.N.korva:type", which no walk shows; without that the type is B_RAW_TYPE.
// Names ending so are B_BAD_VALUE. Links and special files can have no attributes:
// B_NOT_ALLOWED on writing. B_UNSUPPORTED where the file system knows none, B_DEVICE_FULL where a
// value (64 KiB at most) or all together are too large for it.
//
// Holds one descriptor that needs no permission to read the file. Not for use by two threads at
// once. Cost of ReadAttr() at offset 0: one system call.

#pragma once

#include <storage/ExtendedAttributes.h>
#include <storage/FileDescriptor.h>
#include <storage/Statable.h>

#include <string>

class BDirectory;
class BEntry;

struct attr_info {
	uint32 type;
	off_t size;
};

class BNode : public BStatable {
public:
	BNode() = default;
	explicit BNode(const entry_ref* ref);
	explicit BNode(const BEntry* entry);
	explicit BNode(const char* path);
	BNode(const BDirectory* folder, const char* path);
	BNode(const BNode&) = delete;
	~BNode() override = default;

	BNode& operator=(const BNode&) = delete;

	// A link at the end is not followed. Errors as of BEntry, and B_ENTRY_NOT_FOUND for a missing
	// entry.
	status_t SetTo(const entry_ref* ref);
	status_t SetTo(const BEntry* entry);
	status_t SetTo(const char* path);
	status_t SetTo(const BDirectory* folder, const char* path);
	virtual void Unset();
	status_t InitCheck() const { return fStatus; }

	// Hands everything that the object still holds back to the kernel; see BFile.
	virtual status_t Sync();

	// The names of the attributes, from a list taken at the first step; B_ENTRY_NOT_FOUND at its
	// end. The buffer has 256 bytes.
	status_t GetNextAttrName(char* buffer);
	status_t RewindAttrs();

	// A missing attribute is B_ENTRY_NOT_FOUND for all of these.
	status_t GetAttrInfo(const char* name, attr_info* info) const;
	// Bytes read, 0 past the end; `type` is not compared.
	ssize_t ReadAttr(
		const char* name, uint32 type, off_t offset, void* buffer, size_t length) const;
	// Bytes written. A write at 0 replaces the value; one behind the end fills up with zeros.
	ssize_t WriteAttr(
		const char* name, uint32 type, off_t offset, const void* buffer, size_t length);
	status_t RemoveAttr(const char* name);

protected:
	// BStatable
	status_t GetLocation(Location* location) const override;

	// The object has to be unset. An O_PATH descriptor says so by `isPath`.
	status_t SetDescriptor(BPrivate::FileDescriptor descriptor, bool isPath);
	status_t Fail(status_t status);
	int Descriptor() const { return fDescriptor.Get(); }

private:
	friend class BNodeInfo;

	ssize_t ReadValue(const char* attribute, std::string* value) const;
	status_t WriteType(const char* attribute, uint32 type);

	BPrivate::FileDescriptor fDescriptor; // not open unless initialised
	BPrivate::ExtendedAttributes fAttributes;
	std::string fAttrNames; // of the walk, each with its NUL
	size_t fNextAttr = 0;
	bool fHasAttrNames = false;
	status_t fStatus = B_NO_INIT;
};
