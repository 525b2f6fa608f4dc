// SPDX-License-Identifier: MIT

#include "StandardFiles.h"

#include <csignal>
#include <fcntl.h>
#include <string>
#include <sys/stat.h>
#include <unistd.h>

namespace desktop {

namespace {

// The next file that is opened would get the number of one that is closed, and what is printed
// would go into the display's connection.
void
OpenClosedOnes()
{
	int file;
	do
		file = open("/dev/null", O_RDWR);
	while (file >= 0 && file <= STDERR_FILENO);
	if (file >= 0)
		close(file);
}

// The flag belongs to what was opened, which other programs share with us: the file is opened once
// more. A pipe or terminal of another user cannot be, and stays as it is.
void
NeverWaitFor(int file)
{
	struct stat status;
	if (fstat(file, &status) != 0 || !(S_ISFIFO(status.st_mode) || isatty(file)))
		return;
	const std::string path = "/proc/self/fd/" + std::to_string(file);
	const int own = open(path.c_str(), O_WRONLY | O_NONBLOCK | O_NOCTTY | O_CLOEXEC);
	if (own < 0)
		return;
	dup2(own, file);
	close(own);
}

} // namespace

void
PrepareStandardFiles()
{
	OpenClosedOnes();
	// A terminal may stop who prints without being in its foreground.
	std::signal(SIGTTOU, SIG_IGN);
	NeverWaitFor(STDOUT_FILENO);
	NeverWaitFor(STDERR_FILENO);
}

} // namespace desktop
