// SPDX-License-Identifier: MIT

#include "panes/ReadRows.h"

#include "panes/ItemListItem.h"

#include <kernel/OS.h>
#include <storage/Directory.h>

#include <algorithm>
#include <atomic>
#include <thread>

namespace {

constexpr size_t kPortion = 256; // rows; below two of them a thread does not pay
constexpr unsigned kMostThreads = 4;

// Each thread takes a portion of the rows after the other.
struct Work {
	std::vector<entry_ref> refs;
	ItemRows rows;
	std::atomic<size_t> next = 0;

	void Do()
	{
		size_t begin;
		while ((begin = next.fetch_add(kPortion)) < rows.size()) {
			const size_t end = std::min(begin + kPortion, rows.size());
			for (size_t i = begin; i < end; i++) {
				rows[i] = std::make_unique<ItemListItem>();
				rows[i]->SetRef(new entry_ref(std::move(refs[i]))); // the row's own
			}
		}
	}

	static int32 Run(void* work)
	{
		static_cast<Work*>(work)->Do();
		return 0;
	}
};

unsigned
HelpersFor(size_t rows)
{
	const size_t threads = std::clamp(std::thread::hardware_concurrency(), 1u, kMostThreads);
	return static_cast<unsigned>(std::min(threads, std::max<size_t>(rows / kPortion, 1)) - 1);
}

} // namespace

ItemRows
ReadRows(BDirectory& folder)
{
	Work work;
	const int32 count = folder.CountEntries();
	folder.Rewind();
	work.refs.resize(static_cast<size_t>(std::max(count, 0)));
	for (entry_ref& ref : work.refs)
		folder.GetNextRef(&ref);
	work.rows.resize(work.refs.size());

	std::vector<thread_id> helpers;
	for (unsigned i = HelpersFor(work.rows.size()); i > 0; i--) {
		const thread_id helper = spawn_thread(Work::Run, "ReadRows", B_NORMAL_PRIORITY, &work);
		if (helper >= 0 && resume_thread(helper) == B_OK)
			helpers.push_back(helper);
	}
	work.Do();
	for (thread_id helper : helpers) {
		status_t result;
		wait_for_thread(helper, &result);
	}
	return std::move(work.rows);
}
