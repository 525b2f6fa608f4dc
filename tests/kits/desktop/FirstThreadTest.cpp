// SPDX-License-Identifier: MIT

// The toolkit's main thread is the first one that it meets: in a process that has met none yet.

#include "kits/desktop/JobQueue.h"

#include <interface/AlertPanel.h>
#include <interface/Bitmap.h>

#include <QGuiApplication>

#include <cstdio>
#include <cstdlib>
#include <gtest/gtest.h>
#include <thread>
#include <unistd.h>

namespace {

bool sComplained = false;

void
NoteComplaint(QtMsgType, const QMessageLogContext&, const QString& text)
{
	std::fprintf(stderr, "%s\n", qPrintable(text));
	sComplained = sComplained || text.contains(QLatin1String("main() thread"));
}

// As a process starts whose program makes a picture before the desktop has begun.
[[noreturn]] void
StartWithAPicture()
{
	setenv("QT_QPA_PLATFORM", "offscreen", 1);
	desktop::EnterGuiThread();
	std::thread([] { BPrivate::MakeAlertIcon(B_INFO_ALERT); }).join();
	qInstallMessageHandler(NoteComplaint);
	int argc = 1;
	char name[] = "program";
	char* argv[] = {name, nullptr};
	QGuiApplication application(argc, argv);
	_exit(sComplained ? EXIT_FAILURE : EXIT_SUCCESS);
}

} // namespace

TEST(FirstThreadDeathTest, APictureMadeEarlyDoesNotTakeTheDesktopFromItsThread)
{
	GTEST_FLAG_SET(death_test_style, "threadsafe");
	EXPECT_EXIT(StartWithAPicture(), testing::ExitedWithCode(EXIT_SUCCESS), "");
}
