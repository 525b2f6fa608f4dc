// SPDX-License-Identifier: MIT

#pragma once

#include <cstdio>
#include <fcntl.h>
#include <unistd.h>

// The program's traces are not for the table: while this lives, standard output goes nowhere.
class Muted {
public:
	Muted() : fOutput(dup(STDOUT_FILENO))
	{
		fflush(stdout);
		const int nowhere = open("/dev/null", O_WRONLY | O_CLOEXEC);
		dup2(nowhere, STDOUT_FILENO);
		close(nowhere);
	}
	~Muted()
	{
		fflush(stdout);
		dup2(fOutput, STDOUT_FILENO);
		close(fOutput);
	}
	Muted(const Muted&) = delete;
	Muted& operator=(const Muted&) = delete;

private:
	int fOutput;
};
