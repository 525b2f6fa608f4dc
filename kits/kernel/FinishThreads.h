// SPDX-License-Identifier: MIT

// The end of all threads, for a process that is about to end.

#pragma once

namespace BPrivate {

// Returns when no thread made by spawn_thread is at work any more: those that run, sleep for a
// time or wait for one that does are waited for, without limit. Those that only wait to be woken
// (suspended, by receive_data, a semaphore, a looper without messages) while nobody is left who
// could wake them are killed. One that waits so with a looper's lock held is left as it is.
//
// Called once, by a thread that spawn_thread did not make. Threads that were never resumed do not
// count.
void FinishThreads();

} // namespace BPrivate
