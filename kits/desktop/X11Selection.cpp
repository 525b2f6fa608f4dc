// SPDX-License-Identifier: MIT

#include "X11Selection.h"

#include <kernel/OS.h>
#include <support/Errors.h>

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <poll.h>
#include <xcb/xcb.h>

#include <desktop/Clipboard.h>

namespace desktop {

namespace {

constexpr uint32 kPartLength = 65536; // in words of four bytes

// What libxcb hands out is from malloc().
struct Free {
	void operator()(void* memory) const { std::free(memory); }
};
template <typename T>
using Reply = std::unique_ptr<T, Free>;

} // namespace

const char* const X11Selection::kNames[kAtoms] = {nullptr, "TARGETS", "INCR", format::kMessage,
	format::kCopiedFiles, format::kUriList, format::kCutSelection, "UTF8_STRING",
	"text/plain;charset=utf-8", format::kText, "STRING"};

X11Selection::~X11Selection()
{
	Disconnect();
}

void
X11Selection::Disconnect()
{
	if (fConnection != nullptr)
		xcb_disconnect(fConnection);
	fConnection = nullptr;
}

bool
X11Selection::Connect()
{
	if (fConnection != nullptr && xcb_connection_has_error(fConnection) == 0)
		return true;
	Disconnect();
	int screenNumber = 0;
	fConnection = xcb_connect(nullptr, &screenNumber);
	if (xcb_connection_has_error(fConnection) != 0)
		return false;
	auto screen = xcb_setup_roots_iterator(xcb_get_setup(fConnection));
	for (int i = 0; i < screenNumber && screen.rem > 1; i++)
		xcb_screen_next(&screen);
	fWindow = xcb_generate_id(fConnection);
	const uint32 events = XCB_EVENT_MASK_PROPERTY_CHANGE;
	xcb_create_window(fConnection, XCB_COPY_FROM_PARENT, fWindow, screen.data->root, -1, -1, 1, 1,
		0, XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, XCB_CW_EVENT_MASK, &events);

	std::array<xcb_intern_atom_cookie_t, kAtoms + kProperties> cookies;
	for (int i = 0; i < kAtoms + kProperties; i++) {
		const std::string name =
			i < kAtoms ? NameOf(i) : "KORVA_CLIPBOARD_" + std::to_string(i - kAtoms);
		cookies[size_t(i)] =
			xcb_intern_atom(fConnection, 0, static_cast<uint16>(name.size()), name.c_str());
	}
	for (size_t i = 0; i < cookies.size(); i++) {
		const Reply<xcb_intern_atom_reply_t> reply(
			xcb_intern_atom_reply(fConnection, cookies[i], nullptr));
		if (!reply)
			return false;
		if (i < kAtoms)
			fAtoms[i] = reply->atom;
		else
			fProperties[i - kAtoms] = reply->atom;
	}
	return true;
}

status_t
X11Selection::GetOwner(uint32* window, bool* ours)
{
	std::lock_guard lock(fLock);
	if (!Connect())
		return B_ERROR;
	const Reply<xcb_get_selection_owner_reply_t> reply(xcb_get_selection_owner_reply(
		fConnection, xcb_get_selection_owner(fConnection, fAtoms[kSelection]), nullptr));
	if (!reply)
		return B_ERROR;
	*window = reply->owner;
	// The high bits of a window's number tell its connection.
	const uint32 base = ~xcb_get_setup(fConnection)->resource_id_mask;
	*ours = reply->owner != 0 && (reply->owner & base) == (fWindowBase & base);
	// What came before the reply may be an answer that was not waited for any more.
	while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(fConnection)}) {
		if ((event->response_type & 0x7f) == XCB_SELECTION_NOTIFY)
			NoteLate(*reinterpret_cast<const xcb_selection_notify_event_t*>(event.get()));
	}
	return B_OK;
}

bool
X11Selection::TakeLateAnswer()
{
	std::lock_guard lock(fLock);
	return std::exchange(fLateAnswer, false);
}

void
X11Selection::NoteLate(const xcb_selection_notify_event_t& event)
{
	fLateAnswer = true;
	if (event.property != XCB_ATOM_NONE)
		xcb_delete_property(fConnection, fWindow, event.property);
}

status_t
X11Selection::Wait(bigtime_t deadline)
{
	const bigtime_t left = deadline - system_time();
	if (left <= 0)
		return B_TIMED_OUT;
	pollfd file = {xcb_get_file_descriptor(fConnection), POLLIN, 0};
	poll(&file, 1, static_cast<int>(left / 1000 + 1));
	return xcb_connection_has_error(fConnection) != 0 ? B_ERROR : B_OK;
}

// For the answer to the request that named the property.
status_t
X11Selection::Await(uint32 property, uint32 target, bigtime_t deadline)
{
	for (;;) {
		while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(fConnection)}) {
			if ((event->response_type & 0x7f) != XCB_SELECTION_NOTIFY)
				continue;
			const auto& answer = *reinterpret_cast<xcb_selection_notify_event_t*>(event.get());
			if (answer.property == property)
				return B_OK;
			// A refusal does not say of which request; of an older one for the same it is as good.
			if (answer.property == XCB_ATOM_NONE && answer.target == target)
				return B_NAME_NOT_FOUND;
			NoteLate(answer);
		}
		if (status_t status = Wait(deadline); status != B_OK)
			return status;
	}
}

status_t
X11Selection::AwaitPart(uint32 property, bigtime_t deadline)
{
	for (;;) {
		while (const Reply<xcb_generic_event_t> event{xcb_poll_for_event(fConnection)}) {
			if ((event->response_type & 0x7f) != XCB_PROPERTY_NOTIFY)
				continue;
			const auto& change = *reinterpret_cast<xcb_property_notify_event_t*>(event.get());
			if (change.atom == property && change.state == XCB_PROPERTY_NEW_VALUE)
				return B_OK;
		}
		if (status_t status = Wait(deadline); status != B_OK)
			return status;
	}
}

// Appends the property's value to the bytes, and deletes it.
status_t
X11Selection::TakeProperty(uint32 property, uint32* type, std::string* bytes)
{
	uint32 offset = 0;
	for (;;) {
		const Reply<xcb_get_property_reply_t> reply(xcb_get_property_reply(fConnection,
			xcb_get_property(
				fConnection, 1, fWindow, property, XCB_GET_PROPERTY_TYPE_ANY, offset, kPartLength),
			nullptr));
		if (!reply)
			return B_ERROR;
		*type = reply->type;
		const auto length = static_cast<size_t>(xcb_get_property_value_length(reply.get()));
		if (bytes->size() + length > kLargestTransfer)
			return B_NO_MEMORY;
		bytes->append(static_cast<const char*>(xcb_get_property_value(reply.get())), length);
		if (reply->bytes_after == 0) // then it was deleted
			return B_OK;
		offset += static_cast<uint32>(length / 4);
	}
}

// For the next sign of life.
bigtime_t
X11Selection::Deadline() const
{
	return std::min(fEnd, bigtime_t(system_time() + kClipboardPatience));
}

// A long value comes piece by piece; an empty one ends it.
status_t
X11Selection::ReadParts(uint32 property, std::string* bytes)
{
	bytes->clear();
	for (;;) {
		status_t status = AwaitPart(property, Deadline());
		const size_t before = bytes->size();
		uint32 type = 0;
		if (status == B_OK)
			status = TakeProperty(property, &type, bytes);
		if (status != B_OK || bytes->size() == before)
			return status;
	}
}

status_t
X11Selection::Convert(uint32 target, std::string* bytes)
{
	fTurn = (fTurn + 1) % kProperties;
	const uint32 property = fProperties[size_t(fTurn)];
	xcb_delete_property(fConnection, fWindow, property);
	xcb_convert_selection(
		fConnection, fWindow, fAtoms[kSelection], target, property, XCB_CURRENT_TIME);
	xcb_flush(fConnection);
	status_t status = Await(property, target, Deadline());
	if (status != B_OK)
		return status;
	bytes->clear();
	uint32 type = 0;
	status = TakeProperty(property, &type, bytes);
	if (status == B_OK && type == fAtoms[kIncr])
		status = ReadParts(property, bytes);
	return status;
}

status_t
X11Selection::ListAtoms(std::vector<uint32>* atoms)
{
	std::string bytes;
	const status_t status = Convert(fAtoms[kTargets], &bytes);
	if (status != B_OK)
		return status;
	atoms->resize(bytes.size() / sizeof(uint32));
	if (!atoms->empty())
		std::memcpy(atoms->data(), bytes.data(), atoms->size() * sizeof(uint32));
	return B_OK;
}

status_t
X11Selection::List(std::vector<std::string>* formats)
{
	std::lock_guard lock(fLock);
	formats->clear();
	fTextAtom.reset();
	fEnd = system_time() + kLongestReading;
	std::vector<uint32> atoms;
	if (!Connect())
		return B_ERROR;
	if (status_t status = ListAtoms(&atoms); status != B_OK)
		return status;
	const auto has = [&](int atom) {
		return std::find(atoms.begin(), atoms.end(), fAtoms[size_t(atom)]) != atoms.end();
	};
	for (int atom = kMessage; atom < kFirstText; atom++) {
		if (has(atom))
			formats->push_back(kNames[atom]);
	}
	for (int atom = kFirstText; atom <= kLastText && !fTextAtom; atom++) {
		if (has(atom))
			fTextAtom = fAtoms[size_t(atom)];
	}
	if (fTextAtom)
		formats->push_back(format::kText);
	return B_OK;
}

status_t
X11Selection::Read(const std::string& format, std::string* bytes)
{
	std::lock_guard lock(fLock);
	if (!Connect())
		return B_ERROR;
	if (format == format::kText && fTextAtom) {
		const status_t status = Convert(*fTextAtom, bytes);
		if (status != B_OK || *fTextAtom != fAtoms[kLastText])
			return status;
		std::string utf8; // STRING is Latin-1
		for (const char c : *bytes) {
			const auto byte = static_cast<unsigned char>(c);
			if (byte < 0x80)
				utf8 += c;
			else
				utf8 +=
					{static_cast<char>(0xc0 | byte >> 6), static_cast<char>(0x80 | (byte & 63))};
		}
		*bytes = std::move(utf8);
		return B_OK;
	}
	for (int atom = kMessage; atom < kFirstText; atom++) {
		if (format == kNames[atom])
			return Convert(fAtoms[size_t(atom)], bytes);
	}
	return B_NAME_NOT_FOUND;
}

} // namespace desktop
