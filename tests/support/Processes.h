// SPDX-License-Identifier: MIT

// Parts of a test that run as programs of their own, at the same time.

#pragma once

#include <functional>
#include <sys/wait.h>
#include <unistd.h>
#include <vector>

// True when each part was, in its process.
inline bool
InProcesses(const std::vector<std::function<bool()>>& parts)
{
	std::vector<pid_t> processes;
	for (const std::function<bool()>& part : parts) {
		processes.push_back(fork());
		if (processes.back() == 0)
			_exit(part() ? 0 : 1);
	}
	bool good = true;
	for (pid_t process : processes) {
		int status = -1;
		good = waitpid(process, &status, 0) == process && status == 0 && good;
	}
	return good;
}
