// SPDX-License-Identifier: MIT

// A program that has something to finish when its window is closed: a thread that works until the
// file named by the first argument is there, and one that asks the user. What became of them goes
// to the file named by the second. Before all that it prints more than a pipe holds.

#include <app/AppDefs.h>
#include <app/Application.h>
#include <interface/Alert.h>
#include <interface/Window.h>
#include <storage/Entry.h>

#include <cstdio>
#include <string>

namespace {

const char* const* gFiles;

void
Note(const std::string& text)
{
	FILE* file = fopen(gFiles[1], "a");
	fputs(text.c_str(), file);
	fclose(file);
}

std::string
Answer()
{
	return std::to_string((new BAlert("Question", "Go on?", "Yes", "No"))->Go());
}

int32
Work(void*)
{
	while (!BEntry(gFiles[0]).Exists())
		snooze(5000);
	Note("done, asked late: " + Answer() + "\n");
	return B_OK;
}

int32
Ask(void*)
{
	Note("asked: " + Answer() + "\n");
	return B_OK;
}

int32
Sleep(void*)
{
	return suspend_thread(find_thread(nullptr));
}

class ClosingWindow : public BWindow {
public:
	ClosingWindow() : BWindow(BRect(50, 75, 250, 175), "At work", B_TITLED_WINDOW, 0) {}

	bool QuitRequested() override
	{
		be_app->PostMessage(B_QUIT_REQUESTED);
		return true;
	}
};

} // namespace

int
main(int, char** argv)
{
	gFiles = argv + 1;
	BApplication application("application/x-at-work");
	for (int i = 0; i < 10000; i++)
		printf("a line of a trace that nobody may ever read\n");
	for (thread_func function : {Work, Ask, Sleep})
		resume_thread(spawn_thread(function, "worker", B_NORMAL_PRIORITY, nullptr));
	(new ClosingWindow)->Show();
	application.Run();
	return 0;
}
