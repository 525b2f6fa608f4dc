// SPDX-License-Identifier: MIT

#include <storage/EntryRef.h>

#include <cstdlib>
#include <cstring>
#include <utility>

entry_ref::entry_ref(dev_t dev, ino_t dir, const char* leaf) : device(dev), directory(dir)
{
	set_name(leaf);
}

entry_ref::entry_ref(const entry_ref& other) : device(other.device), directory(other.directory)
{
	set_name(other.name);
}

entry_ref::entry_ref(entry_ref&& other) noexcept :
	device(other.device), directory(other.directory), name(std::exchange(other.name, nullptr))
{}

entry_ref::~entry_ref()
{
	free(name);
}

entry_ref&
entry_ref::operator=(const entry_ref& other)
{
	if (this != &other) {
		device = other.device;
		directory = other.directory;
		set_name(other.name);
	}
	return *this;
}

entry_ref&
entry_ref::operator=(entry_ref&& other) noexcept
{
	if (this != &other) {
		device = other.device;
		directory = other.directory;
		free(name);
		name = std::exchange(other.name, nullptr);
	}
	return *this;
}

bool
entry_ref::operator==(const entry_ref& other) const
{
	if (directory != other.directory || !BPrivate::SameDevice(device, other.device))
		return false;
	if (name == nullptr || other.name == nullptr)
		return name == other.name;
	return strcmp(name, other.name) == 0;
}

status_t
entry_ref::set_name(const char* leaf)
{
	// The text may be our own, or part of it: copy before freeing.
	char* copy = leaf == nullptr ? nullptr : strdup(leaf);
	free(name);
	name = copy;
	return copy == nullptr && leaf != nullptr ? B_NO_MEMORY : B_OK;
}
