// SPDX-License-Identifier: MIT

#include "tests/support/MountNamespace.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <filesystem>
#include <sys/mount.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace {

constexpr const char* kInside = "KORVA_TEST_NAMESPACE";

void
Throw(const std::string& path)
{
	throw std::system_error(errno, std::generic_category(), path);
}

} // namespace

bool
InMountNamespace()
{
	if (getenv(kInside) != nullptr)
		return true;
	const testing::TestInfo* test = testing::UnitTest::GetInstance()->current_test_info();
	std::string name = std::string(test->test_suite_name()) + "." + test->name();
	// By a program that has one thread for sure: others may not leave their namespace.
	if (system("unshare --user --map-root-user --mount true") != 0) {
		[] { GTEST_SKIP() << "this system lets the user have no mount namespace"; }();
		return false;
	}
	std::string program = std::filesystem::read_symlink("/proc/self/exe");
	pid_t child = fork();
	if (child == 0) {
		setenv(kInside, "1", 1);
		std::string filter = "--gtest_filter=" + name;
		execlp("unshare", "unshare", "--user", "--map-root-user", "--mount", program.c_str(),
			filter.c_str(), nullptr);
		_exit(126);
	}
	int status = -1;
	waitpid(child, &status, 0);
	EXPECT_EQ(status, 0);
	return false;
}

MemoryVolume::MemoryVolume(const std::string& path, const std::string& options) : fPath(path)
{
	if (mount("tmpfs", path.c_str(), "tmpfs", 0, options.c_str()) != 0)
		Throw(path);
}

MemoryVolume::~MemoryVolume()
{
	if (fIsMounted)
		umount2(fPath.c_str(), MNT_DETACH);
}

void
MemoryVolume::MakeReadOnly()
{
	if (mount("none", fPath.c_str(), nullptr, MS_REMOUNT | MS_RDONLY | MS_BIND, nullptr) != 0)
		Throw(fPath);
}

bool
MemoryVolume::Unmount()
{
	fIsMounted = umount(fPath.c_str()) != 0;
	return !fIsMounted;
}
