// SPDX-License-Identifier: MIT

// Holds the clipboard of X11, offers much, and gives each of it little by little: a few bytes now
// and then, which mean nothing. Says "held" when it has it.

#include <array>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <memory>
#include <poll.h>
#include <string>
#include <vector>
#include <xcb/xcb.h>

namespace {

constexpr int kPause = 700; // ms: less than anyone's patience
constexpr int kParts = 6;

struct Free {
	void operator()(void* memory) const { std::free(memory); }
};

xcb_connection_t* sServer;

xcb_atom_t
Atom(const std::string& name)
{
	const std::unique_ptr<xcb_intern_atom_reply_t, Free> reply(xcb_intern_atom_reply(
		sServer, xcb_intern_atom(sServer, 0, uint16_t(name.size()), name.c_str()), nullptr));
	return reply->atom;
}

struct Giving {
	xcb_selection_request_event_t request;
	int parts;
};

void
Answer(const xcb_selection_request_event_t& request)
{
	xcb_selection_notify_event_t answer = {};
	answer.response_type = XCB_SELECTION_NOTIFY;
	answer.requestor = request.requestor;
	answer.selection = request.selection;
	answer.target = request.target;
	answer.property = request.property;
	xcb_send_event(sServer, 0, request.requestor, 0, reinterpret_cast<const char*>(&answer));
}

} // namespace

int
main()
{
	sServer = xcb_connect(nullptr, nullptr);
	const xcb_screen_t* screen = xcb_setup_roots_iterator(xcb_get_setup(sServer)).data;
	const xcb_window_t window = xcb_generate_id(sServer);
	xcb_create_window(sServer, XCB_COPY_FROM_PARENT, window, screen->root, 0, 0, 1, 1, 0,
		XCB_WINDOW_CLASS_INPUT_ONLY, XCB_COPY_FROM_PARENT, 0, nullptr);
	const xcb_atom_t targets = Atom("TARGETS"), incr = Atom("INCR");
	const std::array offered = {Atom("application/x-korva-message"),
		Atom("x-special/gnome-copied-files"), Atom("text/uri-list"), Atom("UTF8_STRING")};
	xcb_set_selection_owner(sServer, window, Atom("CLIPBOARD"), XCB_CURRENT_TIME);
	xcb_flush(sServer);
	std::puts("held");
	std::fflush(stdout);

	std::vector<Giving> givings;
	while (xcb_connection_has_error(sServer) == 0) {
		pollfd file = {xcb_get_file_descriptor(sServer), POLLIN, 0};
		if (poll(&file, 1, givings.empty() ? -1 : kPause) == 0) {
			for (Giving& giving : givings)
				xcb_change_property(sServer, XCB_PROP_MODE_APPEND, giving.request.requestor,
					giving.request.property, giving.request.target, 8, giving.parts-- > 0 ? 8 : 0,
					"nonsense");
			std::erase_if(givings, [](const Giving& giving) { return giving.parts < 0; });
		}
		while (
			const std::unique_ptr<xcb_generic_event_t, Free> event{xcb_poll_for_event(sServer)}) {
			if ((event->response_type & 0x7f) != XCB_SELECTION_REQUEST)
				continue;
			xcb_selection_request_event_t request;
			std::memcpy(&request, event.get(), sizeof(request));
			if (request.target == targets) {
				xcb_change_property(sServer, XCB_PROP_MODE_REPLACE, request.requestor,
					request.property, XCB_ATOM_ATOM, 32, offered.size(), offered.data());
			} else {
				const uint32_t atLeast = 1;
				xcb_change_property(sServer, XCB_PROP_MODE_REPLACE, request.requestor,
					request.property, incr, 32, 1, &atLeast);
				givings.push_back({request, kParts});
			}
			Answer(request);
		}
		xcb_flush(sServer);
	}
	return 0;
}
