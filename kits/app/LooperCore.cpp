// SPDX-License-Identifier: MIT

#include "kits/app/LooperCore.h"

#include <algorithm>
#include <chrono>
#include <condition_variable>
#include <shared_mutex>
#include <strings.h>

namespace BPrivate {

bool
LooperCore::Post(std::unique_ptr<BMessage> message)
{
	return Enqueue(std::move(message), false);
}

bool
LooperCore::PostFirst(std::unique_ptr<BMessage> message)
{
	return Enqueue(std::move(message), true);
}

bool
LooperCore::Enqueue(std::unique_ptr<BMessage> message, bool first)
{
	{
		std::lock_guard lock(fQueueMutex);
		if (fClosed)
			return false;
		fQueue.insert(first ? fQueue.begin() : fQueue.end(), std::move(message));
		fPosted = true;
		// A loop that is busy looks into its queue before it waits: no need to wake it.
		if (!fWaiting)
			return true;
		fWaiting = false; // one wake-up is enough
	}
	fWakeUp.Wake();
	return true;
}

void
LooperCore::Wake()
{
	{
		std::lock_guard lock(fQueueMutex);
		fWoken = true;
	}
	fWakeUp.Wake();
}

void
LooperCore::Wait(bigtime_t deadline)
{
	std::unique_lock lock(fQueueMutex);
	WaitUntil(lock, deadline, [this] { return !fQueue.empty() || fWoken; });
	fWoken = false;
}

void
LooperCore::WaitForChange(bigtime_t deadline)
{
	std::unique_lock lock(fQueueMutex);
	WaitUntil(lock, deadline, [this] { return fPosted || fWoken; });
	fPosted = false;
	fWoken = false;
}

void
LooperCore::WaitUntil(
	std::unique_lock<std::mutex>& lock, bigtime_t deadline, const std::function<bool()>& ready)
{
	while (!ready() && (deadline == B_INFINITE_TIMEOUT || system_time() < deadline)) {
		fWaiting = true;
		lock.unlock();
		fWakeUp.Wait(deadline);
		lock.lock();
		fWaiting = false;
	}
}

std::unique_ptr<BMessage>
LooperCore::Take()
{
	std::lock_guard lock(fQueueMutex);
	if (fQueue.empty())
		return nullptr;
	std::unique_ptr<BMessage> message = std::move(fQueue.front());
	fQueue.pop_front();
	return message;
}

bool
LooperCore::QueueIsEmpty() const
{
	std::lock_guard lock(fQueueMutex);
	return fQueue.empty();
}

std::unique_ptr<BMessage>
LooperCore::TakeFirst(const std::function<bool(const BMessage&)>& wanted)
{
	std::lock_guard lock(fQueueMutex);
	auto found = std::find_if(
		fQueue.begin(), fQueue.end(), [&](const auto& message) { return wanted(*message); });
	if (found == fQueue.end())
		return nullptr;
	std::unique_ptr<BMessage> message = std::move(*found);
	fQueue.erase(found);
	return message;
}

void
LooperCore::Visit(const std::function<bool(BMessage&)>& visit) const
{
	std::lock_guard lock(fQueueMutex);
	for (const auto& message : fQueue) {
		if (visit(*message))
			return;
	}
}

void
LooperCore::Close()
{
	std::deque<std::unique_ptr<BMessage>> dropped;
	{
		std::lock_guard lock(fQueueMutex);
		fClosed = true;
		dropped.swap(fQueue);
	}
	handlers.clear();
	fLock.Close();
	// Here the dropped messages go, outside the mutex: their senders may be woken.
}

namespace {

struct Registry {
	std::shared_mutex mutex;
	std::unordered_map<const BLooper*, std::shared_ptr<LooperCore>> loopers;
	std::mutex threadMutex;
	std::condition_variable threadEnded;
	int32 threads = 0;
};

// Never destroyed: threads may look for a looper while the process ends.
Registry&
TheRegistry()
{
	static Registry* registry = new Registry;
	return *registry;
}

std::atomic<void (*)()> sPrepareToQuit = nullptr;

struct Application {
	std::mutex lock;
	std::string signature;
	BMessenger messenger;
};

// Never destroyed, as the registry.
Application&
TheApplication()
{
	static Application* sApplication = new Application;
	return *sApplication;
}

} // namespace

std::shared_ptr<LooperCore>
LooperRegistry::Add(BLooper* looper)
{
	auto core = std::make_shared<LooperCore>(looper);
	core->Lock().Lock();
	std::unique_lock lock(TheRegistry().mutex);
	TheRegistry().loopers[looper] = core;
	return core;
}

void
LooperRegistry::Remove(BLooper* looper)
{
	std::unique_lock lock(TheRegistry().mutex);
	TheRegistry().loopers.erase(looper);
}

std::shared_ptr<LooperCore>
LooperRegistry::Find(const BLooper* looper)
{
	std::shared_lock lock(TheRegistry().mutex);
	auto found = TheRegistry().loopers.find(looper);
	return found == TheRegistry().loopers.end() ? nullptr : found->second;
}

std::vector<std::shared_ptr<LooperCore>>
LooperRegistry::All()
{
	std::vector<std::shared_ptr<LooperCore>> all;
	std::shared_lock lock(TheRegistry().mutex);
	all.reserve(TheRegistry().loopers.size());
	for (const auto& entry : TheRegistry().loopers)
		all.push_back(entry.second);
	return all;
}

void
LooperRegistry::ThreadStarted()
{
	std::lock_guard lock(TheRegistry().threadMutex);
	TheRegistry().threads++;
}

void
LooperRegistry::ThreadEnded()
{
	std::lock_guard lock(TheRegistry().threadMutex);
	TheRegistry().threads--;
	TheRegistry().threadEnded.notify_all();
}

bool
LooperRegistry::WaitForThreads(bigtime_t timeout)
{
	std::unique_lock lock(TheRegistry().threadMutex);
	return TheRegistry().threadEnded.wait_for(
		lock, std::chrono::microseconds(timeout), [] { return TheRegistry().threads == 0; });
}

int64
NewHandlerToken()
{
	static std::atomic<int64> last = 0;
	return ++last;
}

void
SetRunningApplication(const char* signature, const BMessenger& messenger)
{
	Application& application = TheApplication();
	std::lock_guard lock(application.lock);
	application.signature = signature;
	application.messenger = messenger;
}

BMessenger
RunningApplication(const char* signature)
{
	Application& application = TheApplication();
	std::lock_guard lock(application.lock);
	// As types of files, signatures compare without case.
	if (signature == nullptr || strcasecmp(application.signature.c_str(), signature) != 0)
		return BMessenger();
	return application.messenger;
}

void
SetQuitPreparation(void (*prepare)())
{
	sPrepareToQuit = prepare;
}

void
PrepareToQuit()
{
	if (void (*prepare)() = sPrepareToQuit)
		prepare();
}

} // namespace BPrivate
