// SPDX-License-Identifier: MIT

// The process's real main function: the desktop on the first thread, the program on a second.

#include "ClipboardWatch.h"
#include "FontCache.h"
#include "Input.h"
#include "JobQueue.h"
#include "OwnVariables.h"
#include "SessionBus.h"
#include "Signals.h"
#include "StandardFiles.h"

#include <desktop/GuiThread.h>
#include <kernel/FinishThreads.h>

#include <QGuiApplication>
#include <QWindow>

#include <clocale>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <pthread.h>
#include <unistd.h>

// The program's own main function, renamed when it was built.
int KitProgramMain(int argc, char** argv);

namespace {

using namespace desktop;

constexpr size_t kProgramStack = 8 * 1024 * 1024;

struct Program {
	int argc;
	char** argv;
	int result = 1;
	pthread_t thread;
	// The program's thread has a locale of its own, since Qt sets the process's when it starts.
	locale_t locale;
};

const char* sProgramName = "program";
Program* sProgram = nullptr; // while its thread was not joined
bool sInEventLoop = false;   // GUI thread
bool sProgramEnded = false;  // GUI thread

void
SetLocale()
{
	std::setlocale(LC_ALL, "");
	std::setlocale(LC_NUMERIC, "C");
}

void
SetDefault(const char* variable, const char* value)
{
	if (std::getenv(variable) == nullptr)
		SetOwnVariable(variable, value);
}

void
SetEnvironment()
{
	// We paint in software: OpenGL would only cost time and memory.
	SetDefault("QT_WAYLAND_CLIENT_BUFFER_INTEGRATION", "shm-emulation-server");
	SetDefault("QT_XCB_GL_INTEGRATION", "none");
	AvoidHangingBus();
}

bool
HasDisplay()
{
	for (const char* variable : {"DISPLAY", "WAYLAND_DISPLAY", "QT_QPA_PLATFORM"}) {
		const char* value = std::getenv(variable);
		if (value != nullptr && *value != '\0')
			return true;
	}
	return false;
}

void
ComplainAboutDisplay()
{
	const char* name = std::getenv("QT_QPA_PLATFORM");
	if (name == nullptr || *name == '\0') {
		name = std::getenv("WAYLAND_DISPLAY");
		if (name == nullptr || *name == '\0')
			name = std::getenv("DISPLAY");
	}
	std::fprintf(stderr, "%s: cannot open the display \"%s\"\n", sProgramName, name ? name : "");
}

// Qt's warnings are no news for users: they are shown on demand only. What is fatal to Qt before
// the desktop is up can only be the display.
void
HandleMessage(QtMsgType type, const QMessageLogContext&, const QString& text)
{
	if (std::getenv("KIT_DEBUG") != nullptr)
		std::fprintf(stderr, "%s: %s\n", sProgramName, qPrintable(text));
	if (type != QtFatalMsg)
		return;
	if (DesktopIsUp())
		std::fprintf(stderr, "%s: %s\n", sProgramName, qPrintable(text));
	else
		ComplainAboutDisplay();
	_exit(EXIT_FAILURE);
}

void*
RunProgram(void* data)
{
	auto* program = static_cast<Program*>(data);
	uselocale(program->locale);
	program->result = KitProgramMain(program->argc, program->argv);
	EndProgram();
	BPrivate::FinishThreads();
	PostGui([] {
		sProgramEnded = true;
		QCoreApplication::exit(); // quit() would ask the windows that are left
	});
	return nullptr;
}

bool
StartProgram(Program& program)
{
	pthread_attr_t attributes;
	pthread_attr_init(&attributes);
	pthread_attr_setstacksize(&attributes, kProgramStack);
	sProgram = &program;
	const int error = pthread_create(&program.thread, &attributes, RunProgram, &program);
	pthread_attr_destroy(&attributes);
	return error == 0;
}

// Runs first when someone calls exit(). Qt does that in the GUI thread when the display server has
// gone away: the program then gets time to end what it does, without a desktop. A program that
// calls it in a thread of its own must not have Qt taken away from under the GUI thread.
void
HandleExit(int status, void*)
{
	if (sProgram == nullptr)
		return;
	if (OnGuiThread() && sInEventLoop) {
		CloseJobQueue(true);
		AskToQuit();
		pthread_join(sProgram->thread, nullptr);
		status = EXIT_FAILURE;
	}
	std::fflush(nullptr);
	_exit(status);
}

void
RunDesktop(char* programPath)
{
	// Qt gets the program's name only: no argument of the program's is Qt's.
	int argc = 1;
	char* argv[] = {programPath, nullptr};
	QGuiApplication application(argc, argv);
	std::setlocale(LC_NUMERIC, "C"); // Qt has set the user's
	// Window managers see "name" as the window's instance and this as its class.
	QString className = QString::fromLocal8Bit(sProgramName);
	if (!className.isEmpty())
		className[0] = className[0].toUpper();
	QCoreApplication::setApplicationName(className);
	QGuiApplication::setDesktopFileName(QString::fromLocal8Bit(sProgramName));
	QGuiApplication::setQuitOnLastWindowClosed(false);
	on_exit(HandleExit, nullptr); // last, since Qt's libraries have handlers of their own
	WatchInput();
	WatchClipboard();
	OpenJobQueue();
	sInEventLoop = true;
	QGuiApplication::exec();
	while (!sProgramEnded) { // the session's manager wants us to end
		AskToQuit();
		QGuiApplication::exec();
	}
	sInEventLoop = false;
	pthread_join(sProgram->thread, nullptr);
	const int result = sProgram->result;
	sProgram = nullptr;
	CloseJobQueue(false);
	FontCache::ForgetCurrent();
	for (QWindow* window : QGuiApplication::allWindows())
		window->destroy();
	// Qt 6.4 closes its connection to a Wayland compositor by waiting for two threads that read
	// from it, and one time in twenty they wait for each other. The system closes it as well.
	if (QGuiApplication::platformName().startsWith(QLatin1String("wayland"))) {
		std::fflush(nullptr);
		_exit(result);
	}
}

} // namespace

int
main(int argc, char** argv)
{
	PrepareStandardFiles();
	EnterGuiThread();
	SetProgramArguments(argc, argv);
	if (argc > 0) {
		const char* slash = std::strrchr(argv[0], '/');
		sProgramName = slash != nullptr ? slash + 1 : argv[0];
	}
	SetLocale();
	if (!HasDisplay()) {
		std::fprintf(stderr,
			"%s: cannot open a display: neither DISPLAY nor WAYLAND_DISPLAY is set\n",
			sProgramName);
		return EXIT_FAILURE;
	}
	SetEnvironment();
	EndSignals endSignals;
	qInstallMessageHandler(HandleMessage);
	Program program{argc, argv, 1, {}, duplocale(LC_GLOBAL_LOCALE)};
	if (!StartProgram(program)) {
		std::fprintf(stderr, "%s: cannot start a thread\n", sProgramName);
		return EXIT_FAILURE;
	}
	std::string path(argc > 0 ? argv[0] : sProgramName);
	RunDesktop(path.data());
	freelocale(program.locale);
	return program.result;
}
