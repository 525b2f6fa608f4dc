// SPDX-License-Identifier: MIT

// Does what the lines of its input say and answers each with a line; paths are hexadecimal bytes:
//   launch PATH          the status code in hexadecimal digits, and the new process's number
//   running SIGNATURE    0 or 1
//   show PATH ...        the status code, after the file manager was sent these

#include <app/AppDefs.h>
#include <app/Message.h>
#include <app/Messenger.h>
#include <app/Roster.h>
#include <storage/Entry.h>

#include <cstdio>
#include <iostream>
#include <sstream>
#include <string>

namespace {

std::string
Bytes(const std::string& digits)
{
	std::string bytes;
	for (size_t i = 0; i + 1 < digits.size(); i += 2)
		bytes += static_cast<char>(std::stoi(digits.substr(i, 2), nullptr, 16));
	return bytes;
}

// Also of what does not exist.
entry_ref
Ref(const std::string& digits)
{
	entry_ref ref;
	BEntry(Bytes(digits).c_str()).GetRef(&ref);
	return ref;
}

void
Launch(std::istream& words)
{
	std::string path;
	words >> path;
	const entry_ref ref = Ref(path);
	team_id team = -1;
	const status_t status = be_roster->Launch(&ref, nullptr, &team);
	std::printf("%x %d\n", static_cast<unsigned>(status), static_cast<int>(team));
}

void
Show(std::istream& words)
{
	BMessage message(B_REFS_RECEIVED);
	for (std::string path; words >> path;) {
		const entry_ref ref = Ref(path);
		message.AddRef("refs", &ref);
	}
	BMessenger fileManager("application/x-vnd.Be-TRAK");
	std::printf("%x\n", static_cast<unsigned>(fileManager.SendMessage(&message)));
}

} // namespace

int
main(int, char**)
{
	for (std::string line; std::getline(std::cin, line);) {
		std::istringstream words(line);
		std::string word;
		words >> word;
		if (word == "launch") {
			Launch(words);
		} else if (word == "show") {
			Show(words);
		} else if (words >> word) {
			std::printf("%d\n", be_roster->IsRunning(word.c_str()));
		}
		std::fflush(stdout);
	}
	return 0;
}
