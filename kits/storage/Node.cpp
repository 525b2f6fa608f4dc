// SPDX-License-Identifier: MIT

#include <storage/Node.h>

#include <storage/Entry.h>

#include <support/TypeConstants.h>

#include <algorithm>
#include <climits>
#include <cstring>
#include <fcntl.h>
#include <linux/limits.h>
#include <string_view>

using namespace BPrivate;

namespace {

constexpr std::string_view kPrefix = "user.";
constexpr std::string_view kTypeSuffix = ".korva:type";

// The kernel's names for an attribute and its type.
class AttrNames {
public:
	// B_BAD_VALUE, B_NAME_TOO_LONG.
	status_t SetTo(const char* name)
	{
		size_t length = name == nullptr ? 0 : strlen(name);
		if (length == 0 || std::string_view(name, length).ends_with(kTypeSuffix))
			return B_BAD_VALUE;
		if (kPrefix.size() + length > XATTR_NAME_MAX)
			return B_NAME_TOO_LONG;
		memcpy(fValue, kPrefix.data(), kPrefix.size());
		memcpy(fValue + kPrefix.size(), name, length + 1);
		fHasType = kPrefix.size() + length + kTypeSuffix.size() <= XATTR_NAME_MAX;
		return B_OK;
	}

	const char* Value() const { return fValue; }

	// False for names that are too long to have a type but B_RAW_TYPE.
	bool HasType() const { return fHasType; }
	std::string Type() const { return std::string(fValue).append(kTypeSuffix); }

private:
	char fValue[XATTR_NAME_MAX + 1];
	bool fHasType = false;
};

// The first character comes first on the disk as well.
uint32
DecodeType(const uint8 (&bytes)[4])
{
	return static_cast<uint32>(bytes[0]) << 24 | bytes[1] << 16 | bytes[2] << 8 | bytes[3];
}

} // namespace

BNode::BNode(const entry_ref* ref)
{
	SetTo(ref);
}

BNode::BNode(const BEntry* entry)
{
	SetTo(entry);
}

BNode::BNode(const char* path)
{
	SetTo(path);
}

BNode::BNode(const BDirectory* folder, const char* path)
{
	SetTo(folder, path);
}

status_t
BNode::SetTo(const entry_ref* ref)
{
	BEntry entry(ref);
	return SetTo(&entry);
}

status_t
BNode::SetTo(const BEntry* entry)
{
	Unset();
	if (entry == nullptr)
		return Fail(B_BAD_VALUE);
	if (entry->InitCheck() != B_OK)
		return Fail(entry->InitCheck());
	FileDescriptor descriptor(Retry([&] {
		return openat(
			entry->fFolder->Descriptor(), entry->fRef.name, O_PATH | O_NOFOLLOW | O_CLOEXEC);
	}));
	return SetDescriptor(std::move(descriptor), true);
}

status_t
BNode::SetTo(const char* path)
{
	BEntry entry(path);
	return SetTo(&entry);
}

status_t
BNode::SetTo(const BDirectory* folder, const char* path)
{
	BEntry entry(folder, path);
	return SetTo(&entry);
}

status_t
BNode::SetDescriptor(FileDescriptor descriptor, bool isPath)
{
	if (!descriptor.IsOpen())
		return Fail(StatusFromErrno(errno));
	fDescriptor = std::move(descriptor);
	fAttributes.SetTo(fDescriptor.Get(), isPath);
	return fStatus = B_OK;
}

status_t
BNode::Fail(status_t status)
{
	return fStatus = status;
}

void
BNode::Unset()
{
	fAttributes.Unset();
	fDescriptor.Close();
	RewindAttrs();
	fStatus = B_NO_INIT;
}

status_t
BNode::Sync()
{
	return fDescriptor.IsOpen() ? B_OK : B_NO_INIT;
}

status_t
BNode::RewindAttrs()
{
	fAttrNames = {};
	fNextAttr = 0;
	fHasAttrNames = false;
	return fDescriptor.IsOpen() ? B_OK : B_NO_INIT;
}

status_t
BNode::GetNextAttrName(char* buffer)
{
	if (buffer == nullptr)
		return B_BAD_VALUE;
	if (!fDescriptor.IsOpen())
		return B_NO_INIT;
	if (!fHasAttrNames) {
		if (status_t status = fAttributes.List(&fAttrNames); status != B_OK)
			return status;
		fHasAttrNames = true;
	}
	while (fNextAttr < fAttrNames.size()) {
		std::string_view name = fAttrNames.c_str() + fNextAttr;
		fNextAttr += name.size() + 1;
		if (!name.starts_with(kPrefix) || name.ends_with(kTypeSuffix))
			continue;
		name.remove_prefix(kPrefix.size());
		memcpy(buffer, name.data(), name.size() + 1);
		return B_OK;
	}
	return B_ENTRY_NOT_FOUND;
}

status_t
BNode::GetAttrInfo(const char* name, attr_info* info) const
{
	AttrNames names;
	if (info == nullptr)
		return B_BAD_VALUE;
	if (!fDescriptor.IsOpen())
		return B_NO_INIT;
	if (status_t status = names.SetTo(name); status != B_OK)
		return status;
	ssize_t size = fAttributes.Get(names.Value(), nullptr, 0);
	if (size < 0)
		return static_cast<status_t>(size);
	info->size = size;
	info->type = B_RAW_TYPE;
	uint8 type[4];
	if (names.HasType() &&
		fAttributes.Get(names.Type().c_str(), type, sizeof(type)) == sizeof(type))
		info->type = DecodeType(type);
	return B_OK;
}

// All of a value. The length may change between the two calls: anything fits into the most that
// the kernel allows.
ssize_t
BNode::ReadValue(const char* attribute, std::string* value) const
{
	value->resize(XATTR_SIZE_MAX);
	ssize_t size = fAttributes.Get(attribute, value->data(), value->size());
	value->resize(size > 0 ? size : 0);
	return size;
}

ssize_t
BNode::ReadAttr(const char* name, uint32, off_t offset, void* buffer, size_t length) const
{
	AttrNames names;
	if (offset < 0 || (buffer == nullptr && length > 0))
		return B_BAD_VALUE;
	if (!fDescriptor.IsOpen())
		return B_NO_INIT;
	if (status_t status = names.SetTo(name); status != B_OK)
		return status;
	if (offset == 0 && length > 0) {
		ssize_t size = fAttributes.Get(names.Value(), buffer, std::min<size_t>(length, SSIZE_MAX));
		if (size != B_DEVICE_FULL) // which says here that the value is longer than asked for
			return size;
	}
	std::string value;
	ssize_t size = ReadValue(names.Value(), &value);
	if (size <= offset || length == 0)
		return size < 0 ? size : 0;
	length = std::min<size_t>(length, size - offset);
	memcpy(buffer, value.data() + offset, length);
	return length;
}

ssize_t
BNode::WriteAttr(const char* name, uint32 type, off_t offset, const void* buffer, size_t length)
{
	AttrNames names;
	if (offset < 0 || (buffer == nullptr && length > 0))
		return B_BAD_VALUE;
	if (!fDescriptor.IsOpen())
		return B_NO_INIT;
	if (status_t status = names.SetTo(name); status != B_OK)
		return status;
	if (!names.HasType() && type != B_RAW_TYPE)
		return B_NAME_TOO_LONG;
	if (offset > XATTR_SIZE_MAX || length > static_cast<size_t>(XATTR_SIZE_MAX - offset))
		return B_DEVICE_FULL;

	status_t status;
	if (offset == 0) {
		status = fAttributes.Set(names.Value(), buffer, length);
	} else {
		std::string value;
		ssize_t size = ReadValue(names.Value(), &value);
		if (size < 0 && size != B_ENTRY_NOT_FOUND)
			return size;
		value.resize(std::max<size_t>(value.size(), offset + length));
		if (length > 0)
			memcpy(value.data() + offset, buffer, length);
		status = fAttributes.Set(names.Value(), value.data(), value.size());
	}
	// The value first: a type without its value would be nothing at all.
	if (status == B_OK && names.HasType())
		status = WriteType(names.Type().c_str(), type);
	return status == B_OK ? static_cast<ssize_t>(length) : status;
}

// Raw values have none, so that what other programs wrote stays as it is when copied.
status_t
BNode::WriteType(const char* attribute, uint32 type)
{
	if (type == B_RAW_TYPE) {
		status_t status = fAttributes.Remove(attribute);
		return status == B_ENTRY_NOT_FOUND ? B_OK : status;
	}
	const uint8 bytes[4] = {static_cast<uint8>(type >> 24), static_cast<uint8>(type >> 16),
		static_cast<uint8>(type >> 8), static_cast<uint8>(type)};
	return fAttributes.Set(attribute, bytes, sizeof(bytes));
}

status_t
BNode::RemoveAttr(const char* name)
{
	AttrNames names;
	if (!fDescriptor.IsOpen())
		return B_NO_INIT;
	if (status_t status = names.SetTo(name); status != B_OK)
		return status;
	if (names.HasType()) {
		status_t status = fAttributes.Remove(names.Type().c_str());
		if (status != B_OK && status != B_ENTRY_NOT_FOUND)
			return status;
	}
	return fAttributes.Remove(names.Value());
}

status_t
BNode::GetLocation(Location* location) const
{
	if (!fDescriptor.IsOpen())
		return B_NO_INIT;
	location->folder = fDescriptor.Get();
	location->name = "";
	return B_OK;
}
