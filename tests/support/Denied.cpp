// SPDX-License-Identifier: MIT

#include "tests/support/Denied.h"

#include <cerrno>
#include <cstddef>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sys/fsuid.h>
#include <sys/prctl.h>
#include <sys/syscall.h>
#include <system_error>
#include <vector>

namespace {

constexpr uid_t kNobody = 65534;

sock_filter
Load(size_t offset)
{
	return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<uint32_t>(offset));
}

sock_filter
SkipUnless(uint32_t value, uint8_t instructions)
{
	return BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, value, 0, instructions);
}

sock_filter
Answer(uint32_t answer)
{
	return BPF_STMT(BPF_RET | BPF_K, answer);
}

void
Install(std::vector<sock_filter> filter)
{
	filter.push_back(Answer(SECCOMP_RET_ALLOW));
	sock_fprog program = {static_cast<unsigned short>(filter.size()), filter.data()};
	if (prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0) != 0 ||
		prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &program) != 0)
		throw std::system_error(errno, std::generic_category(), "seccomp");
}

} // namespace

AsNobody::AsNobody() : fUser(setfsuid(kNobody)) {}

AsNobody::~AsNobody()
{
	setfsuid(static_cast<uid_t>(fUser));
}

void
Deny(Denial denial)
{
	if (denial == Denial::kNothing)
		return;
	std::vector<sock_filter> filter = {
		Load(offsetof(seccomp_data, nr)),
		SkipUnless(SYS_renameat2, 4),
		Load(offsetof(seccomp_data, args[4])), // the flags; their low half on our machines
		BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, 0, 1, 0),
		Answer(SECCOMP_RET_ERRNO | EINVAL),
		Answer(SECCOMP_RET_ALLOW),
	};
	if (denial == Denial::kAndHardLinks) {
		filter.push_back(SkipUnless(SYS_linkat, 1));
		filter.push_back(Answer(SECCOMP_RET_ERRNO | EPERM));
	}
	Install(std::move(filter));
}

void
DenyFrom(uint32_t offset, int call, int error)
{
	Install({
		Load(offsetof(seccomp_data, nr)),
		SkipUnless(static_cast<uint32_t>(call), 3),
		Load(offsetof(seccomp_data, args[3])), // the low half on our machines
		BPF_JUMP(BPF_JMP | BPF_JGE | BPF_K, offset, 0, 1),
		Answer(SECCOMP_RET_ERRNO | static_cast<uint32_t>(error)),
	});
}
