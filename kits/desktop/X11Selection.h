// SPDX-License-Identifier: MIT

// Reads one of X11's selections, as the clipboard, over a connection to the display of its own.
// Internal to this folder.
//
// Any thread; one reads at a time. Never waits longer than the patience without a sign of life of
// the program that holds the selection, and never longer than kLongestReading for all that is read
// after a List().

#pragma once

#include <desktop/Content.h>
#include <support/SupportDefs.h>

#include <array>
#include <mutex>
#include <optional>

struct xcb_connection_t;
struct xcb_selection_notify_event_t;

namespace desktop {

class X11Selection {
public:
	static constexpr bigtime_t kLongestReading = 3000000;         // microseconds
	static constexpr size_t kLargestTransfer = 256 * 1024 * 1024; // bytes

	// `name`: "CLIPBOARD" or "PRIMARY". `windowBase`: where the numbers of the windows of Qt's
	// connection begin.
	X11Selection(const char* name, uint32 windowBase) : fName(name), fWindowBase(windowBase) {}
	~X11Selection();
	X11Selection(const X11Selection&) = delete;
	X11Selection& operator=(const X11Selection&) = delete;

	// The window that holds the selection, or 0, and whether it is one of Qt's. B_ERROR without a
	// display.
	status_t GetOwner(uint32* window, bool* ours);

	// Errors as of ListClipboard(). Listing begins a reading.
	status_t List(std::vector<std::string>* formats);
	status_t Read(const std::string& format, std::string* bytes);

	// True once after an answer has come too late.
	bool TakeLateAnswer();

private:
	enum Atom {
		kSelection,
		kTargets,
		kIncr,
		kMessage,
		kCopiedFiles,
		kUriList,
		kCutSelection,
		kFirstText, // the best first
		kLastText = kFirstText + 3,
		kAtoms
	};
	static constexpr int kProperties = 8; // in turns, to tell late answers from the present one

	bool Connect();
	void Disconnect();
	status_t Convert(uint32 target, std::string* bytes);
	status_t Await(uint32 property, uint32 target, bigtime_t deadline);
	status_t AwaitPart(uint32 property, bigtime_t deadline);
	status_t Wait(bigtime_t deadline);
	status_t TakeProperty(uint32 property, uint32* type, std::string* bytes);
	status_t ReadParts(uint32 property, std::string* bytes);
	bigtime_t Deadline() const;
	void NoteLate(const xcb_selection_notify_event_t& event);
	status_t ListAtoms(std::vector<uint32>* atoms);
	const char* NameOf(int atom) const { return atom == kSelection ? fName : kNames[atom]; }
	static const char* const kNames[kAtoms]; // the selection's own is left out

	std::mutex fLock; // guards all below
	const char* const fName;
	const uint32 fWindowBase;
	xcb_connection_t* fConnection = nullptr;
	uint32 fWindow = 0;
	std::array<uint32, kAtoms> fAtoms = {};
	std::array<uint32, kProperties> fProperties = {};
	int fTurn = 0;
	bigtime_t fEnd = 0; // of the reading
	bool fLateAnswer = false;
	std::optional<uint32> fTextAtom; // of what was listed last
};

} // namespace desktop
