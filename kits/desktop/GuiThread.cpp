// SPDX-License-Identifier: MIT

// The queue of jobs for the GUI thread.

#include <desktop/GuiThread.h>

#include "JobQueue.h"

#include <QCoreApplication>
#include <QEvent>
#include <QObject>
#include <QThread>

#include <algorithm>
#include <atomic>
#include <condition_variable>
#include <deque>
#include <memory>
#include <mutex>
#include <vector>

namespace desktop {

namespace {

thread_local bool tIsGuiThread = false;

// Lives on the stack of the thread that waits for it; guarded by the queue's lock.
struct Call {
	const std::function<void()>* job;
	std::condition_variable ended;
	bool over = false;
	bool ran = false;
};

struct Job {
	Call* call; // or null: `posted` counts
	std::function<void()> posted;
};

class JobQueue {
public:
	enum class State { kStarting, kUp, kGone, kLost };

	bool Call(const std::function<void()>& job);
	bool Post(std::function<void()> job);
	bool WaitUntilUp();
	bool Is(State state);

	void Open();
	void Close(bool displayLost);
	void RunNext();

private:
	bool IsOver() const { return fState == State::kGone || fState == State::kLost; } // lock held
	void Wake();                                                                     // lock held
	void Push(Job job);

	std::mutex fLock;
	std::condition_variable fStarted;
	State fState = State::kStarting;
	std::deque<Job> fJobs;
	std::vector<struct Call*> fRunning; // calls whose job runs; several in nested event loops
	bool fWakeUnderWay = false;
	std::unique_ptr<QObject> fReceiver;
};

// Takes one job per event, so that events of the desktop get their turn between jobs.
class WakeReceiver : public QObject {
public:
	explicit WakeReceiver(JobQueue& queue) : fQueue(queue) {}

	bool event(QEvent* event) override
	{
		if (event->type() != QEvent::User)
			return QObject::event(event);
		fQueue.RunNext();
		return true;
	}

private:
	JobQueue& fQueue;
};

// Never deleted: threads may ask as late as the process's last moment.
JobQueue&
Queue()
{
	static JobQueue* sQueue = new JobQueue;
	return *sQueue;
}

bool
JobQueue::Call(const std::function<void()>& job)
{
	struct Call call {
		&job, {}
	};
	std::unique_lock lock(fLock);
	if (IsOver())
		return false;
	Push({&call, nullptr});
	call.ended.wait(lock, [&call] { return call.over; });
	return call.ran;
}

bool
JobQueue::Post(std::function<void()> job)
{
	std::unique_lock lock(fLock);
	if (IsOver()) {
		lock.unlock(); // what the job owns may do anything when it is deleted
		return false;
	}
	Push({nullptr, std::move(job)});
	return true;
}

void
JobQueue::Push(Job job)
{
	fJobs.push_back(std::move(job));
	Wake();
}

void
JobQueue::Wake()
{
	if (fState != State::kUp || fWakeUnderWay)
		return;
	fWakeUnderWay = true;
	QCoreApplication::postEvent(fReceiver.get(), new QEvent(QEvent::User));
}

bool
JobQueue::WaitUntilUp()
{
	std::unique_lock lock(fLock);
	fStarted.wait(lock, [this] { return fState != State::kStarting; });
	return fState == State::kUp;
}

bool
JobQueue::Is(State state)
{
	std::lock_guard lock(fLock);
	return fState == state;
}

void
JobQueue::Open()
{
	auto receiver = std::make_unique<WakeReceiver>(*this);
	std::lock_guard lock(fLock);
	fReceiver = std::move(receiver);
	fState = State::kUp;
	fStarted.notify_all();
	if (!fJobs.empty())
		Wake();
}

void
JobQueue::Close(bool displayLost)
{
	std::deque<Job> dropped;
	std::unique_ptr<QObject> receiver;
	{
		std::lock_guard lock(fLock);
		fState = displayLost ? State::kLost : State::kGone;
		dropped.swap(fJobs);
		receiver = std::move(fReceiver);
		for (const Job& job : dropped) {
			if (job.call != nullptr)
				fRunning.push_back(job.call);
		}
		for (struct Call* call : fRunning) {
			call->over = true;
			call->ended.notify_one();
		}
		fRunning.clear();
		fStarted.notify_all();
	}
	if (displayLost) {
		// Jobs may own windows, which could only be deleted with a living display.
		static auto* sLeft = new std::deque<Job>;
		sLeft->swap(dropped);
		receiver.release();
	}
}

void
JobQueue::RunNext()
{
	std::unique_lock lock(fLock);
	fWakeUnderWay = false;
	if (fJobs.empty())
		return;
	Job job = std::move(fJobs.front());
	fJobs.pop_front();
	// Before the job runs: it may stay in an event loop of its own.
	if (!fJobs.empty())
		Wake();
	if (job.call == nullptr) {
		lock.unlock();
		job.posted();
		return;
	}
	fRunning.push_back(job.call);
	lock.unlock();
	(*job.call->job)();
	lock.lock();
	const auto found = std::find(fRunning.begin(), fRunning.end(), job.call);
	if (found == fRunning.end())
		return; // given up meanwhile: the caller is gone
	fRunning.erase(found);
	job.call->over = true;
	job.call->ran = true;
	job.call->ended.notify_one();
}

struct QuitWish {
	std::mutex lock;
	std::function<void()> handler;
	bool asked = false;
};

QuitWish&
Wish()
{
	static QuitWish* sWish = new QuitWish;
	return *sWish;
}

std::atomic<bool> sProgramHasEnded = false;
std::atomic<void (*)()> sEndHandler = nullptr;

std::vector<std::string>&
Arguments()
{
	static auto* sArguments = new std::vector<std::string>;
	return *sArguments;
}

} // namespace

bool
CallGui(const std::function<void()>& job)
{
	if (!tIsGuiThread)
		return Queue().Call(job);
	if (!DesktopIsUp())
		return false;
	job();
	return true;
}

bool
PostGui(std::function<void()> job)
{
	return Queue().Post(std::move(job));
}

bool
OnGuiThread()
{
	return tIsGuiThread;
}

bool
WaitForDesktop()
{
	// Asked before each text that is drawn: once up, a thread need not look again. A desktop that
	// went away meanwhile leaves fonts as usable as they were.
	thread_local bool tWasUp = false;
	if (!tWasUp)
		tWasUp = Queue().WaitUntilUp();
	return tWasUp;
}

void
SetQuitHandler(std::function<void()> handler)
{
	QuitWish& wish = Wish();
	std::unique_lock lock(wish.lock);
	wish.handler = std::move(handler);
	if (!wish.handler || !wish.asked)
		return;
	wish.asked = false;
	lock.unlock();
	if (!PostGui(AskToQuit))
		AskToQuit();
}

void
AskToQuit()
{
	// Called with the lock held, so that a handler is not running any more when it was unset.
	QuitWish& wish = Wish();
	std::lock_guard lock(wish.lock);
	if (wish.handler)
		wish.handler();
	else
		wish.asked = true;
}

bool
ProgramHasEnded()
{
	return sProgramHasEnded;
}

void
SetEndHandler(void (*handler)())
{
	sEndHandler = handler;
}

void
EndProgram()
{
	sProgramHasEnded = true;
	if (void (*handler)() = sEndHandler)
		handler();
}

const std::vector<std::string>&
ProgramArguments()
{
	return Arguments();
}

void
SetProgramArguments(int argc, char** argv)
{
	Arguments().assign(argv, argv + argc);
}

void
EnterGuiThread()
{
	tIsGuiThread = true;
	// The first thread that Qt meets is its main thread for good. A picture that the program makes
	// while the desktop is starting must not make it the program's: windows would stay black.
	QThread::currentThread();
}

void
OpenJobQueue()
{
	Queue().Open();
}

void
CloseJobQueue(bool displayLost)
{
	Queue().Close(displayLost);
}

bool
DesktopIsUp()
{
	return Queue().Is(JobQueue::State::kUp);
}

bool
DisplayIsLost()
{
	return Queue().Is(JobQueue::State::kLost);
}

} // namespace desktop
