// SPDX-License-Identifier: MIT

#include <interface/TextModel.h>

#include <algorithm>

namespace BPrivate {

constexpr size_t kMaxSteps = 1000;

static bool
IsBlank(const std::string& text, desktop::TextSpan span)
{
	return span.begin < span.end && (text[span.begin] == ' ' || text[span.begin] == '\t');
}

void
TextModel::SetText(std::string_view text)
{
	fText = text;
	fAnchor = fCaret = 0;
	fSteps.clear();
	fDone = 0;
	fStepOpen = false;
}

void
TextModel::Select(size_t anchor, size_t caret)
{
	anchor = std::min(anchor, fText.size());
	caret = std::min(caret, fText.size());
	if (anchor == fAnchor && caret == fCaret)
		return;
	fAnchor = anchor;
	fCaret = caret;
	fStepOpen = false;
}

// Whether the edit belongs to the last step, which then tells of both.
bool
TextModel::Continue(size_t begin, size_t end, std::string_view with, Kind kind)
{
	if (!fStepOpen || fDone == 0 || kind == Kind::kOther || fSteps[fDone - 1].kind != kind)
		return false;
	Step& last = fSteps[fDone - 1];
	if (kind == Kind::kTyping) {
		if (begin != end || begin != last.begin + last.inserted.size())
			return false;
		last.inserted += with;
		return true;
	}
	const std::string_view removed = std::string_view(fText).substr(begin, end - begin);
	if (end == last.begin) {
		last.removed.insert(0, removed);
		last.begin = begin;
		return true;
	}
	if (begin == last.begin) {
		last.removed += removed;
		return true;
	}
	return false;
}

TextModel::Change
TextModel::Replace(size_t begin, size_t end, std::string_view with, Kind kind)
{
	end = std::min(end, fText.size());
	begin = std::min(begin, end);
	const Change change = {begin, end - begin, with.size()};
	if (change.removed == 0 && change.inserted == 0)
		return change;
	fSteps.resize(fDone);
	if (!Continue(begin, end, with, kind)) {
		if (fSteps.size() == kMaxSteps)
			fSteps.erase(fSteps.begin());
		fSteps.push_back(
			{begin, fText.substr(begin, end - begin), std::string(with), fAnchor, fCaret, kind});
		fDone = fSteps.size();
	}
	fText.replace(begin, end - begin, with);
	fAnchor = fCaret = begin + with.size();
	fStepOpen = true;
	return change;
}

std::optional<TextModel::Change>
TextModel::Undo()
{
	if (fDone == 0)
		return std::nullopt;
	const Step& step = fSteps[--fDone];
	fText.replace(step.begin, step.inserted.size(), step.removed);
	fAnchor = step.anchor;
	fCaret = step.caret;
	fStepOpen = false;
	return Change{step.begin, step.inserted.size(), step.removed.size()};
}

std::optional<TextModel::Change>
TextModel::Redo()
{
	if (fDone == fSteps.size())
		return std::nullopt;
	const Step& step = fSteps[fDone++];
	fText.replace(step.begin, step.removed.size(), step.inserted);
	fAnchor = fCaret = step.begin + step.inserted.size();
	fStepOpen = false;
	return Change{step.begin, step.removed.size(), step.inserted.size()};
}

size_t
TextModel::After(size_t offset) const
{
	const desktop::TextSpan line = LineAt(offset);
	if (offset >= line.end)
		return std::min(offset + 1, fText.size()); // over the newline
	return desktop::CharacterEnd(std::string_view(fText).substr(0, line.end), offset);
}

size_t
TextModel::Before(size_t offset) const
{
	const desktop::TextSpan line = LineAt(offset);
	if (offset <= line.begin)
		return line.begin - (line.begin > 0 ? 1 : 0);
	return line.begin +
		desktop::CharacterBegin(std::string_view(fText).substr(line.begin), offset - line.begin);
}

desktop::TextSpan
TextModel::WordAt(size_t offset) const
{
	const desktop::TextSpan line = LineAt(offset);
	const std::string_view text = std::string_view(fText).substr(line.begin, line.end - line.begin);
	const desktop::TextSpan word = desktop::WordAt(text, std::min(offset, line.end) - line.begin);
	return {line.begin + word.begin, line.begin + word.end};
}

size_t
TextModel::NextWord(size_t offset) const
{
	if (offset >= LineAt(offset).end)
		return After(offset);
	size_t next = WordAt(offset).end;
	const size_t lineEnd = LineAt(offset).end;
	while (next < lineEnd && IsBlank(fText, WordAt(next)))
		next = WordAt(next).end;
	return next;
}

size_t
TextModel::PreviousWord(size_t offset) const
{
	const size_t lineBegin = LineAt(offset).begin;
	if (offset <= lineBegin)
		return Before(offset);
	desktop::TextSpan word = WordAt(Before(offset));
	while (word.begin > lineBegin && IsBlank(fText, word))
		word = WordAt(Before(word.begin));
	return word.begin;
}

desktop::TextSpan
TextModel::LineAt(size_t offset) const
{
	offset = std::min(offset, fText.size());
	const size_t before = offset == 0 ? std::string::npos : fText.rfind('\n', offset - 1);
	const size_t after = fText.find('\n', offset);
	return {before == std::string::npos ? 0 : before + 1,
		after == std::string::npos ? fText.size() : after};
}

} // namespace BPrivate
