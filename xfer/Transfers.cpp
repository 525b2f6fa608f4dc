// SPDX-License-Identifier: MIT

#include "xfer/Transfers.h"

#include <deque>
#include <list>
#include <memory>
#include <mutex>
#include <unordered_map>

namespace NFileXFer {

namespace {

constexpr int32 kMostRunning = 8;

struct Transfer {
	thread_func function;
	void* data;
	std::string target;
	thread_id thread = -1;
};

class Schedule {
public:
	// The transfers to resume come back; null when none may start now.
	Transfer* Add(Transfer* transfer);
	Transfer* End(const Transfer& transfer);
	Transfer* Leave(); // one that runs makes room
	void Return();

	bool IsTarget(const std::string& path);

private:
	Transfer* NextOrNone();

	std::mutex fLock;
	int32 fRunning = 0;
	std::deque<Transfer*> fReady; // suspended; each is freed by its own thread
	std::unordered_map<std::string, std::list<Transfer*>> fTargets; // with those waiting for them
};

// Never destroyed: transfers may run while the process ends.
Schedule&
TheSchedule()
{
	static Schedule* sSchedule = new Schedule;
	return *sSchedule;
}

Transfer*
Schedule::Add(Transfer* transfer)
{
	std::lock_guard lock(fLock);
	if (!transfer->target.empty()) {
		auto [target, isFree] = fTargets.try_emplace(transfer->target);
		if (!isFree) {
			target->second.push_back(transfer);
			return nullptr;
		}
	}
	if (fRunning >= kMostRunning) {
		fReady.push_back(transfer);
		return nullptr;
	}
	fRunning++;
	return transfer;
}

Transfer*
Schedule::End(const Transfer& transfer)
{
	std::lock_guard lock(fLock);
	auto target = fTargets.find(transfer.target);
	if (target != fTargets.end()) {
		if (target->second.empty()) {
			fTargets.erase(target);
		} else {
			fReady.push_front(target->second.front());
			target->second.pop_front();
		}
	}
	return NextOrNone();
}

Transfer*
Schedule::Leave()
{
	std::lock_guard lock(fLock);
	return NextOrNone();
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

// In the place of one that has run.
Transfer*
Schedule::NextOrNone()
{
	if (fReady.empty() || fRunning > kMostRunning) {
		fRunning--;
		return nullptr;
	}
	Transfer* next = fReady.front();
	fReady.pop_front();
	return next;
}

void
Resume(const Transfer* transfer)
{
	if (transfer != nullptr)
		resume_thread(transfer->thread);
}

// Whatever way the transfer ends.
struct Ending {
	~Ending() { Resume(TheSchedule().End(*transfer)); }

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
	// From here on it is the thread's.
	Resume(TheSchedule().Add(transfer.release()));
	return true;
}

bool
IsTransferTarget(const std::string& path)
{
	return TheSchedule().IsTarget(path);
}

TransferPause::TransferPause()
{
	Resume(TheSchedule().Leave());
}

TransferPause::~TransferPause()
{
	TheSchedule().Return();
}

} // namespace NFileXFer
