// SPDX-License-Identifier: MIT

// What an editor edits: a text, the selection in it, and the edits that can be undone.
//
// Draws and measures nothing. Text is bytes, mostly UTF-8; offsets are bytes and limited to the
// text. Bytes that no edit touches stay as they are.

#pragma once

#include <desktop/Text.h>

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace BPrivate {

class TextModel {
public:
	// What happened to the text: bytes went away and others came at `begin`.
	struct Change {
		size_t begin = 0;
		size_t removed = 0;
		size_t inserted = 0;
	};
	// Edits of one kind that follow each other are undone together; others one by one.
	enum class Kind { kTyping, kErasing, kOther };

	const std::string& Text() const { return fText; }
	size_t Length() const { return fText.size(); }
	void SetText(std::string_view text); // caret at the start; nothing to undo

	// The selection goes from the anchor, where it was begun, to the caret.
	size_t Anchor() const { return fAnchor; }
	size_t Caret() const { return fCaret; }
	size_t Begin() const { return fAnchor < fCaret ? fAnchor : fCaret; }
	size_t End() const { return fAnchor < fCaret ? fCaret : fAnchor; }
	bool HasSelection() const { return fAnchor != fCaret; }
	std::string Selected() const { return fText.substr(Begin(), End() - Begin()); }
	void Select(size_t anchor, size_t caret);

	// Leaves the caret behind what was inserted.
	Change Replace(size_t begin, size_t end, std::string_view with, Kind kind);
	// Nothing when there is nothing to undo; the selection becomes what it was.
	std::optional<Change> Undo();
	std::optional<Change> Redo();

	// Movements; lines end at newlines.
	size_t After(size_t offset) const;
	size_t Before(size_t offset) const;
	size_t NextWord(size_t offset) const;     // its begin
	size_t PreviousWord(size_t offset) const; // its begin
	desktop::TextSpan WordAt(size_t offset) const;
	desktop::TextSpan LineAt(size_t offset) const; // without the newline

private:
	struct Step {
		size_t begin;
		std::string removed;
		std::string inserted;
		size_t anchor; // of the selection before
		size_t caret;
		Kind kind;
	};

	bool Continue(size_t begin, size_t end, std::string_view with, Kind kind);

	std::string fText;
	size_t fAnchor = 0;
	size_t fCaret = 0;
	std::vector<Step> fSteps;
	size_t fDone = 0;       // steps before this one are in force, the others were undone
	bool fStepOpen = false; // the last step may be continued
};

} // namespace BPrivate
