// SPDX-License-Identifier: MIT

// The lives of loopers, handlers, messengers and threads in every order: what counts is that
// nobody waits for ever, nothing leaks, and the sanitizers have nothing to say.

#include <app/AppDefs.h>
#include <app/Application.h>
#include <app/Looper.h>
#include <app/Messenger.h>
#include <kernel/DeferKill.h>

#include "tests/support/Storm.h"
#include "tests/support/Waiting.h"

#include <gtest/gtest.h>

#include <atomic>
#include <functional>
#include <memory>
#include <mutex>
#include <thread>
#include <unistd.h>
#include <vector>

namespace {

constexpr uint32 kMsgWork = 'work';
constexpr uint32 kMsgQuitInside = 'quin';
constexpr uint32 kMsgExitThread = 'exit';

std::atomic<int> sLiving; // loopers and handlers of these tests

class Cell : public BHandler {
public:
	Cell() { sLiving++; }
	~Cell() override { sLiving--; }

	void MessageReceived(BMessage* message) override
	{
		if (message->what == kMsgWork)
			message->SendReply(B_REPLY);
		else
			BHandler::MessageReceived(message);
	}
};

class Worker : public BLooper {
public:
	Worker() : BLooper("worker") { sLiving++; }

	void MessageReceived(BMessage* message) override
	{
		switch (message->what) {
			case kMsgWork:
				message->SendReply(B_REPLY);
				break;
			case kMsgQuitInside:
				Lock(); // twice is once too often: Quit() must not care
				Quit();
				ADD_FAILURE() << "Quit() came back";
				break;
			case kMsgExitThread:
				exit_thread(7);
			default:
				BLooper::MessageReceived(message);
		}
	}

protected:
	~Worker() override { sLiving--; }
};

void
LockAndQuit(BLooper* looper)
{
	if (looper->Lock())
		looper->Quit();
}

// The application must let this through wherever it is.
void
LockAndUnlock(const BMessenger& messenger)
{
	if (!messenger.LockTarget())
		return;
	BLooper* looper = nullptr;
	EXPECT_NE(nullptr, messenger.Target(&looper));
	looper->Unlock();
}

thread_id
Spawn(std::function<void()>* work)
{
	thread_id thread = spawn_thread(
		[](void* data) -> int32 {
			(*static_cast<std::function<void()>*>(data))();
			return 0;
		},
		"storm", B_NORMAL_PRIORITY, work);
	resume_thread(thread);
	return thread;
}

// Loopers by pointer and messenger, which stay when the loopers are gone.
class Pool {
public:
	struct Entry {
		BLooper* looper = nullptr;
		BMessenger messenger;
	};

	explicit Pool(size_t size) : fEntries(size) {}

	Entry Get(int index)
	{
		std::lock_guard lock(fLock);
		return fEntries[static_cast<size_t>(index)];
	}
	// What was there goes.
	void Set(int index, const Entry& entry)
	{
		std::lock_guard lock(fLock);
		fEntries[static_cast<size_t>(index)].messenger.SendMessage(B_QUIT_REQUESTED);
		fEntries[static_cast<size_t>(index)] = entry;
	}

private:
	std::mutex fLock;
	std::vector<Entry> fEntries;
};

constexpr int kPlaces = 8;

// A handler that leaves its looper before it goes, also when a kill unwinds the stack.
class Guest {
public:
	~Guest()
	{
		const BPrivate::DeferKill noKill;
		if (!fCell.LockLooper()) // the looper has gone, and let go of the handler
			return;
		BLooper* looper = fCell.Looper();
		looper->RemoveHandler(&fCell);
		looper->Unlock();
	}

	Cell& operator*() { return fCell; }

private:
	Cell fCell;
};

void
AddAndRemoveHandler(BLooper* looper)
{
	Guest guest;
	if (!looper->Lock())
		return;
	looper->AddHandler(&*guest);
	const BMessenger messenger(&*guest);
	looper->Unlock();
	messenger.SendMessage(kMsgWork);
	BMessage message(kMsgWork), reply;
	messenger.SendMessage(&message, &reply, B_INFINITE_TIMEOUT, 1000);
}

void
Renew(Pool& pool, int place, bool run)
{
	// The worker holds the new looper's lock until it runs, so that a kill leaves nothing behind.
	Worker* looper = new Worker;
	if (run) {
		pool.Set(place, {looper, BMessenger(looper)});
		looper->Run();
	} else
		looper->Quit();
}

void
DoSomething(Pool& pool, Dice& dice)
{
	const int place = dice(kPlaces);
	const Pool::Entry entry = pool.Get(place);
	if (entry.looper == nullptr || dice(5) == 0) {
		Renew(pool, place, dice(4) != 0);
		return;
	}
	BMessage message(kMsgWork), reply;
	switch (dice(10)) {
		case 0:
			LockAndQuit(entry.looper);
			break;
		case 1:
			entry.messenger.SendMessage(kMsgQuitInside);
			break;
		case 2:
			entry.looper->PostMessage(B_QUIT_REQUESTED);
			break;
		case 3:
			entry.looper->PostMessage(kMsgWork, entry.looper);
			break;
		case 4: // answered, by the looper or by its end
			if (entry.messenger.SendMessage(&message, &reply) == B_OK) {
				EXPECT_TRUE(reply.what == B_REPLY || reply.what == B_NO_REPLY);
			}
			break;
		case 5:
			AddAndRemoveHandler(entry.looper);
			break;
		case 6:
			if (entry.looper->LockWithTimeout(dice(300)) == B_OK)
				entry.looper->Unlock();
			break;
		case 7:
			LockAndUnlock(entry.messenger);
			break;
		case 8:
			if (entry.looper->Lock()) {
				entry.looper->PostMessage(kMsgQuitInside);
				snooze(dice(100)); // others queue up for the lock meanwhile
				entry.looper->Unlock();
			}
			break;
		default:
			entry.messenger.SendMessage(kMsgExitThread);
	}
}

} // namespace

TEST(Lifecycle, LoopersHandlersAndMessengersInAStormOfThreadsThatAreKilled)
{
	const int rounds = Rounds(60, 3000);
	constexpr int kThreads = 4;
	sLiving = 0;
	Pool pool(kPlaces);
	std::atomic<bool> ending = false;
	std::atomic<unsigned> seed = 20261123;
	std::function<void()> work = [&] {
		Dice dice(seed++);
		while (!ending) {
			DoSomething(pool, dice);
			snooze(1); // where a kill ends it
		}
	};
	std::vector<thread_id> threads(kThreads);
	for (thread_id& thread : threads)
		thread = Spawn(&work);
	Dice dice(1);
	for (int i = 0; i < rounds; i++) {
		snooze(dice(4000));
		thread_id& thread = threads[static_cast<size_t>(dice(kThreads))];
		kill_thread(thread);
		thread = Spawn(&work);
	}
	ending = true;
	for (thread_id thread : threads)
		wait_for_thread(thread);
	for (int i = 0; i < kPlaces; i++) {
		if (BLooper* looper = pool.Get(i).looper)
			LockAndQuit(looper);
	}
	// Those that are ending by themselves.
	EXPECT_TRUE(WaitUntil([] { return sLiving == 0; })) << sLiving << " are left";
}

TEST(Lifecycle, ManyQuitTheSameLooperAtOnceWhileSendersWait)
{
	for (int i = 0; i < Rounds(50, 2000); i++) {
		sLiving = 0;
		Worker* looper = new Worker;
		const BMessenger messenger(looper);
		// The senders' messages are queued for sure while the lock is held.
		std::vector<std::thread> threads;
		std::atomic<int> started = 0;
		for (int j = 0; j < 4; j++) {
			threads.emplace_back([&] {
				BMessage message(kMsgWork), reply;
				started++;
				if (messenger.SendMessage(&message, &reply) == B_OK) {
					EXPECT_TRUE(reply.what == B_REPLY || reply.what == B_NO_REPLY);
				}
			});
			threads.emplace_back([&] {
				started++;
				LockAndQuit(looper);
			});
		}
		EXPECT_TRUE(WaitUntil([&] { return started == 8; }));
		if (i % 2 == 0)
			looper->PostMessage(kMsgQuitInside);
		looper->Run();
		for (std::thread& thread : threads)
			thread.join();
		EXPECT_TRUE(WaitUntil([&] { return sLiving == 0 && !messenger.IsValid(); }));
	}
}

TEST(Lifecycle, ALooperWhoseThreadEndsBeforeItsTimeIsDeletedByItOrByQuit)
{
	for (int i = 0; i < Rounds(50, 2000); i++) {
		sLiving = 0;
		Worker* looper = new Worker;
		const BMessenger messenger(looper);
		const thread_id thread = looper->Run();
		if (i % 2 == 0) {
			messenger.SendMessage(kMsgExitThread);
			wait_for_thread(thread);
		} else {
			kill_thread(thread); // before its first message, or while it waits for one
			LockAndQuit(looper);
		}
		EXPECT_FALSE(messenger.IsValid());
		EXPECT_EQ(0, sLiving);
	}
}

// A window that tells the application to quit when it is asked itself, beside one that refuses.
TEST(Lifecycle, AnApplicationTakesRequestsToQuitThatComeWhileItAsksForOne)
{
	class Asking : public BApplication {
	public:
		Asking() : BApplication("application/x-asking") {}
		bool QuitRequested() override
		{
			asked++;
			PostMessage(B_QUIT_REQUESTED);
			be_app_messenger.SendMessage(B_QUIT_REQUESTED);
			return asked > 2;
		}
		void MessageReceived(BMessage*) override { trace += std::to_string(asked); }
		int asked = 0;
		std::string trace;
	} application;
	for (int i = 0; i < 3; i++) {
		application.PostMessage(B_QUIT_REQUESTED);
		application.PostMessage(kMsgWork);
	}
	application.Run();
	EXPECT_EQ(3, application.asked) << "once for each that was posted before";
	EXPECT_EQ("12", application.trace) << "in their place among the messages";
}

TEST(Lifecycle, AnApplicationIsFoundByItsSignature)
{
	status_t status = B_ERROR;
	{
		BApplication application("application/x-Korva-test");
		EXPECT_EQ(be_app_messenger, BMessenger("application/x-korva-TEST", -1, &status));
		EXPECT_EQ(B_OK, status);
		EXPECT_TRUE(BMessenger("application/x-korva-test", getpid()).IsValid());
		EXPECT_FALSE(BMessenger("application/x-korva-test", getpid() + 1).IsValid());
		EXPECT_FALSE(BMessenger("application/x-other").IsValid());
	}
	EXPECT_FALSE(BMessenger("application/x-korva-test", -1, &status).IsValid());
	EXPECT_EQ(B_BAD_VALUE, status);
}

// A looper that makes another one when it is told to work, even while the application ends.
TEST(Lifecycle, ApplicationsEndEveryLooperThatRuns)
{
	class Breeder : public Worker {
	public:
		explicit Breeder(int generations) : fGenerations(generations) {}

		void MessageReceived(BMessage* message) override
		{
			if (fGenerations > 0 && message->what == kMsgWork) {
				Breeder* child = new Breeder(fGenerations - 1);
				child->PostMessage(kMsgWork);
				child->Run();
			}
			LockAndUnlock(be_app_messenger);
		}

	private:
		const int fGenerations;
	};
	Dice dice(20261124);
	for (int i = 0; i < Rounds(30, 600); i++) {
		sLiving = 0;
		std::atomic<bool> ended = false;
		std::thread outsider;
		{
			BApplication application("application/x-storm");
			outsider = std::thread([&ended, messenger = be_app_messenger] {
				while (!ended) {
					messenger.SendMessage(kMsgWork);
					LockAndUnlock(messenger);
				}
				EXPECT_FALSE(messenger.IsValid());
			});
			for (int j = dice(4); j >= 0; j--) {
				Breeder* breeder = new Breeder(5);
				breeder->PostMessage(kMsgWork);
				breeder->Run();
			}
			(new Worker)->IsLocked(); // never run: its maker is the one that ends it
			if (dice(2) == 0) {
				application.PostMessage(B_QUIT_REQUESTED);
				application.Run();
			}
		}
		EXPECT_EQ(nullptr, be_app);
		EXPECT_FALSE(be_app_messenger.IsValid());
		EXPECT_EQ(0, sLiving);
		ended = true;
		outsider.join();
	}
}
