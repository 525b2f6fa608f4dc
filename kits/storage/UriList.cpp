// SPDX-License-Identifier: MIT

#include <storage/UriList.h>

#include <climits>
#include <cstring>
#include <unistd.h>

namespace BPrivate {

namespace {

constexpr std::string_view kScheme = "file:";

// By hand: the C library's answers depend on the user's language.
char
Lower(char c)
{
	return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c;
}

bool
EqualNoCase(std::string_view a, std::string_view b)
{
	if (a.size() != b.size())
		return false;
	for (size_t i = 0; i < a.size(); i++) {
		if (Lower(a[i]) != Lower(b[i]))
			return false;
	}
	return true;
}

bool
IsPlainInUri(char c)
{
	return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') ||
		(c != '\0' && std::strchr("/-_.~!$&'()*+,=:@", c) != nullptr);
}

int
HexValue(char c)
{
	c = Lower(c);
	if (c >= '0' && c <= '9')
		return c - '0';
	return c >= 'a' && c <= 'f' ? c - 'a' + 10 : -1;
}

bool
IsThisHost(std::string_view host)
{
	if (host.empty() || EqualNoCase(host, "localhost"))
		return true;
	char name[HOST_NAME_MAX + 1] = "";
	return gethostname(name, sizeof(name) - 1) == 0 && EqualNoCase(host, name);
}

// False for what no path can hold, and for what only part of the text's readers would take for
// part of the path.
bool
Decode(std::string_view text, std::string* path)
{
	path->clear();
	path->reserve(text.size());
	for (size_t i = 0; i < text.size(); i++) {
		char c = text[i];
		if (c == '\0' || c == '#' || c == '?')
			return false;
		if (c == '%') {
			if (text.size() - i < 3)
				return false;
			const int high = HexValue(text[i + 1]);
			const int low = HexValue(text[i + 2]);
			if (high < 0 || low < 0)
				return false;
			c = static_cast<char>(high * 16 + low);
			if (c == '\0' || c == '/')
				return false;
			i += 2;
		}
		*path += c;
	}
	return true;
}

// Cuts the next line off; its end may be CR LF, LF or CR.
std::string_view
TakeLine(std::string_view* text)
{
	const size_t end = text->find_first_of("\r\n");
	const std::string_view line = text->substr(0, end);
	if (end == text->npos) {
		*text = {};
		return line;
	}
	const bool two = text->substr(end, 2) == "\r\n";
	text->remove_prefix(end + (two ? 2 : 1));
	return line;
}

// Some programs hand texts over with the zero byte that ends them.
std::string_view
WithoutEnd(std::string_view text)
{
	while (!text.empty() && text.back() == '\0')
		text.remove_suffix(1);
	return text;
}

// How many bytes the character at the start of the text has; 0 when it is none.
size_t
CharacterLength(std::string_view text)
{
	const auto byte = [text](size_t i) { return static_cast<unsigned char>(text[i]); };
	const unsigned char first = byte(0);
	if (first < 0x80)
		return 1;
	const size_t length = first >= 0xf0 ? 4 : first >= 0xe0 ? 3 : 2;
	if (first < 0xc2 || first > 0xf4 || text.size() < length)
		return 0;
	for (size_t i = 1; i < length; i++) {
		if ((byte(i) & 0xc0) != 0x80)
			return 0;
	}
	// Longer than needed, a surrogate, or beyond the last character.
	if ((first == 0xe0 && byte(1) < 0xa0) || (first == 0xed && byte(1) > 0x9f) ||
		(first == 0xf0 && byte(1) < 0x90) || (first == 0xf4 && byte(1) > 0x8f))
		return 0;
	return length;
}

} // namespace

std::string
UriOf(std::string_view path)
{
	constexpr char kDigits[] = "0123456789ABCDEF";
	std::string uri = "file://";
	uri.reserve(uri.size() + path.size());
	for (char c : path) {
		if (IsPlainInUri(c)) {
			uri += c;
			continue;
		}
		const auto byte = static_cast<unsigned char>(c);
		uri += '%';
		uri += kDigits[byte >> 4];
		uri += kDigits[byte & 15];
	}
	return uri;
}

bool
PathOfUri(std::string_view uri, std::string* path)
{
	if (!EqualNoCase(uri.substr(0, kScheme.size()), kScheme))
		return false;
	uri.remove_prefix(kScheme.size());
	if (uri.substr(0, 2) == "//") {
		uri.remove_prefix(2);
		const size_t slash = uri.find('/');
		if (slash == uri.npos || !IsThisHost(uri.substr(0, slash)))
			return false;
		uri.remove_prefix(slash);
	}
	return !uri.empty() && uri[0] == '/' && Decode(uri, path);
}

std::string
MakeUriList(const std::vector<std::string>& paths)
{
	std::string text;
	for (const std::string& path : paths)
		text += UriOf(path) + "\r\n";
	return text;
}

std::vector<std::string>
ReadUriList(std::string_view text)
{
	std::vector<std::string> paths;
	std::string path;
	text = WithoutEnd(text);
	while (!text.empty()) {
		if (PathOfUri(TakeLine(&text), &path)) // a comment is none
			paths.push_back(path);
	}
	return paths;
}

std::string
MakeCopiedFiles(const CopiedFiles& files)
{
	std::string text = files.cut ? "cut" : "copy";
	for (const std::string& path : files.paths)
		text += "\n" + UriOf(path);
	return text;
}

bool
ReadCopiedFiles(std::string_view text, CopiedFiles* files)
{
	text = WithoutEnd(text);
	const std::string_view action = TakeLine(&text);
	if (action != "cut" && action != "copy")
		return false;
	files->cut = action == "cut";
	files->paths = ReadUriList(text);
	return true;
}

bool
ReadCutSelection(std::string_view text)
{
	return WithoutEnd(text) == kCutSelectionText;
}

std::string
MakeUtf8(std::string_view text)
{
	std::string result;
	result.reserve(text.size());
	while (!text.empty()) {
		const size_t length = CharacterLength(text);
		if (length == 0)
			result += "\xef\xbf\xbd";
		else
			result += text.substr(0, length);
		text.remove_prefix(length == 0 ? 1 : length);
	}
	return result;
}

} // namespace BPrivate
