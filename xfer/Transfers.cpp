// SPDX-License-Identifier: MIT

#include "xfer/Transfers.h"

#include <algorithm>
#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace NFileXFer {

namespace {

constexpr int32 kQuickAtOnce = 2;
constexpr int32 kMostAtOnce = 128;
constexpr bigtime_t kPatience = 50000;

struct Transfer {
	thread_func function;
	void* data;
	std::string target;
	thread_id thread = -1;
	bigtime_t start = 0;
};

class Schedule {
public:
	void Add(Transfer* transfer);
	void End(const Transfer& transfer);
	void Leave(); // one that runs makes room
	void Return();
	bool IsTarget(const std::string& path);

	// Lets one more run when none has ended since the last call. False when none waits.
	bool Relieve();

private:
	// What is left to do without the lock.
	struct Orders {
		Transfer* start = nullptr;
		bool watch = false;
	};

	Orders Next();
	static void Carry(const Orders& orders);

	std::mutex fLock;
	int32 fRunning = 0;
	int32 fLimit = kQuickAtOnce;
	int32 fEnded = 0; // since the last look
	bool fIsWatched = false;
	std::deque<Transfer*> fReady; // suspended; each is freed by its own thread
	std::unordered_map<std::string, std::list<Transfer*>> fTargets; // and who waits for them
};

// Never destroyed: transfers may run while the process ends.
Schedule&
TheSchedule()
{
	static Schedule* sSchedule = new Schedule;
	return *sSchedule;
}

void
Schedule::Add(Transfer* transfer)
{
	Orders orders;
	{
		std::lock_guard lock(fLock);
		if (!transfer->target.empty()) {
			auto [target, isFree] = fTargets.try_emplace(transfer->target);
			if (!isFree) {
				target->second.push_back(transfer);
				return;
			}
		}
		fReady.push_back(transfer);
		orders = Next();
	}
	Carry(orders);
}

void
Schedule::End(const Transfer& transfer)
{
	Orders orders;
	{
		std::lock_guard lock(fLock);
		fEnded++;
		fRunning--;
		if (system_time() - transfer.start > kPatience)
			fLimit = std::max(fLimit - 1, kQuickAtOnce);
		auto target = fTargets.find(transfer.target);
		if (target != fTargets.end() && target->second.empty()) {
			fTargets.erase(target);
		} else if (target != fTargets.end()) {
			fReady.push_front(target->second.front());
			target->second.pop_front();
		}
		orders = Next();
	}
	Carry(orders);
}

void
Schedule::Leave()
{
	Orders orders;
	{
		std::lock_guard lock(fLock);
		fRunning--;
		orders = Next();
	}
	Carry(orders);
}

void
Schedule::Return()
{
	std::lock_guard lock(fLock);
	fRunning++;
}

bool
Schedule::IsTarget(const std::string& path)
{
	std::lock_guard lock(fLock);
	return fTargets.contains(path);
}

bool
Schedule::Relieve()
{
	Orders orders;
	{
		std::lock_guard lock(fLock);
		if (fReady.empty()) {
			fIsWatched = false;
			return false;
		}
		if (fEnded == 0)
			fLimit = std::min(std::max(fLimit, fRunning) + 1, kMostAtOnce);
		fEnded = 0;
		orders = Next();
	}
	Carry(orders);
	return true;
}

Schedule::Orders
Schedule::Next()
{
	Orders orders;
	if (!fReady.empty() && fRunning < fLimit) {
		fRunning++;
		orders.start = fReady.front();
		orders.start->start = system_time();
		fReady.pop_front();
	}
	orders.watch = !fReady.empty() && !fIsWatched;
	fIsWatched = fIsWatched || orders.watch;
	return orders;
}

int32
Watch(void*)
{
	do
		snooze(kPatience);
	while (TheSchedule().Relieve());
	return 0;
}

void
Schedule::Carry(const Orders& orders)
{
	if (orders.start != nullptr)
		resume_thread(orders.start->thread);
	if (orders.watch)
		resume_thread(spawn_thread(Watch, "transfers", B_NORMAL_PRIORITY, nullptr));
}

// Whatever way the transfer ends.
struct Ending {
	~Ending() { TheSchedule().End(*transfer); }

	std::unique_ptr<Transfer> transfer;
};

int32
Run(void* data)
{
	Ending ending{std::unique_ptr<Transfer>(static_cast<Transfer*>(data))};
	return ending.transfer->function(ending.transfer->data);
}

} // namespace

bool
StartTransfer(const char* name, thread_func function, void* data, std::string target)
{
	auto transfer = std::make_unique<Transfer>(Transfer{function, data, std::move(target)});
	transfer->thread = spawn_thread(Run, name, B_NORMAL_PRIORITY, transfer.get());
	if (transfer->thread < 0)
		return false;
	TheSchedule().Add(transfer.release()); // the thread's from now on
	return true;
}

bool
IsTransferTarget(const std::string& path)
{
	return TheSchedule().IsTarget(path);
}

TransferPause::TransferPause()
{
	TheSchedule().Leave();
}

TransferPause::~TransferPause()
{
	TheSchedule().Return();
}

} // namespace NFileXFer
