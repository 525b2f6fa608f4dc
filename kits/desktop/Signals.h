// SPDX-License-Identifier: MIT

// The signals that end the process. Internal to this folder.

#pragma once

#include <pthread.h>

namespace desktop {

// SIGTERM, SIGHUP and SIGINT ask the application to quit while the desktop is up; before and
// after they end the process as usual. The latter two stay ignored when they are at the start.
// SIGPIPE is ignored.
//
// Blocks them in the calling thread, which must be the only one, for all threads to come:
// programs that are launched inherit that unless their launcher resets the mask.
class EndSignals {
public:
	EndSignals();
	~EndSignals();
	EndSignals(const EndSignals&) = delete;
	EndSignals& operator=(const EndSignals&) = delete;

private:
	static void* Watch(void* self);

	pthread_t fThread;
	bool fStarted;
};

} // namespace desktop
