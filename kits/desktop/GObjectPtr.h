// SPDX-License-Identifier: MIT

// Owners of what GLib hands out. Internal to this folder.

#pragma once

#include <glib-object.h>

#include <memory>

namespace desktop {

// For every kind of thing with a release function of its own.
template <auto Release>
struct GRelease {
	template <typename T>
	void operator()(T* thing) const
	{
		Release(thing);
	}
};

// One reference.
template <typename T>
using GObjectPtr = std::unique_ptr<T, GRelease<g_object_unref>>;

using GErrorPtr = std::unique_ptr<GError, GRelease<g_error_free>>;
using GVariantPtr = std::unique_ptr<GVariant, GRelease<g_variant_unref>>;

using GText = std::unique_ptr<char, GRelease<g_free>>;

} // namespace desktop
