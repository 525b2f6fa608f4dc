// SPDX-License-Identifier: MIT

#include "tests/support/MountNamespace.h"

#include <gtest/gtest.h>

#include <cerrno>
#include <cstdlib>
#include <fstream>
#include <sched.h>
#include <sys/mount.h>
#include <sys/wait.h>
#include <system_error>
#include <unistd.h>

namespace {

constexpr const char* kInside = "KORVA_TEST_NAMESPACE";
constexpr int kRefused = 77;

// The user is root of the new namespace, who may mount there.
void
RunInside(const std::string& test)
{
	std::string user = "0 " + std::to_string(geteuid()) + " 1";
	std::string group = "0 " + std::to_string(getegid()) + " 1";
	if (unshare(CLONE_NEWUSER | CLONE_NEWNS) != 0)
		_exit(kRefused);
	std::ofstream("/proc/self/setgroups") << "deny";
	std::ofstream("/proc/self/uid_map") << user;
	std::ofstream("/proc/self/gid_map") << group;
	if (mount("none", "/", nullptr, MS_REC | MS_PRIVATE, nullptr) != 0)
		_exit(kRefused);
	setenv(kInside, "1", 1);
	std::string filter = "--gtest_filter=" + test;
	execl("/proc/self/exe", "test", filter.c_str(), nullptr);
	_exit(126);
}

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
	pid_t child = fork();
	if (child == 0)
		RunInside(name);
	int status = 0;
	waitpid(child, &status, 0);
	if (WIFEXITED(status) && WEXITSTATUS(status) == kRefused)
		[] { GTEST_SKIP() << "this system lets users have no mount namespaces"; }();
	else
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
