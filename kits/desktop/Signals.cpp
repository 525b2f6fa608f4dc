// SPDX-License-Identifier: MIT

// A thread that waits for the signals that end the process.

#include "Signals.h"

#include "JobQueue.h"

#include <desktop/GuiThread.h>

#include <climits>
#include <csignal>

namespace desktop {

namespace {

constexpr size_t kStackSize = 128 * 1024;

bool
IsIgnored(int signal)
{
	struct sigaction action;
	return sigaction(signal, nullptr, &action) == 0 && action.sa_handler == SIG_IGN;
}

// Who starts a program with a signal ignored (nohup, a shell's background) wants it to stay so.
sigset_t
EndSet()
{
	sigset_t set;
	sigemptyset(&set);
	sigaddset(&set, SIGTERM);
	for (int signal : {SIGHUP, SIGINT}) {
		if (!IsIgnored(signal))
			sigaddset(&set, signal);
	}
	return set;
}

// From another thread or process a signal always carries where it came from.
bool
IsOurWakeUp(const siginfo_t& info, const void* self)
{
	return info.si_code == SI_QUEUE && info.si_value.sival_ptr == self;
}

void
DieOf(int signal)
{
	sigset_t set;
	sigemptyset(&set);
	sigaddset(&set, signal);
	std::signal(signal, SIG_DFL);
	pthread_sigmask(SIG_UNBLOCK, &set, nullptr);
	raise(signal);
}

} // namespace

EndSignals::EndSignals()
{
	std::signal(SIGPIPE, SIG_IGN);
	const sigset_t set = EndSet();
	pthread_sigmask(SIG_BLOCK, &set, nullptr);
	pthread_attr_t attributes;
	pthread_attr_init(&attributes);
	pthread_attr_setstacksize(&attributes, kStackSize);
	fStarted = pthread_create(&fThread, &attributes, Watch, this) == 0;
	pthread_attr_destroy(&attributes);
}

EndSignals::~EndSignals()
{
	if (!fStarted)
		return;
	sigval value;
	value.sival_ptr = this;
	pthread_sigqueue(fThread, SIGTERM, value);
	pthread_join(fThread, nullptr);
}

void*
EndSignals::Watch(void* self)
{
	const sigset_t set = EndSet();
	for (;;) {
		siginfo_t info;
		const int signal = sigwaitinfo(&set, &info);
		if (signal < 0)
			continue;
		if (IsOurWakeUp(info, self))
			return nullptr;
		// With the display lost the program is on its way out already, and ends what it does.
		if ((!DesktopIsUp() || !PostGui(AskToQuit)) && !DisplayIsLost())
			DieOf(signal);
	}
}

} // namespace desktop
