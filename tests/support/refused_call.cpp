#include "support/refused_call.h"

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/prctl.h>
#include <sys/syscall.h>

#include <cerrno>
#include <cstddef>
#include <vector>

namespace {

constexpr unsigned allow = SECCOMP_RET_ALLOW;

unsigned refusal(int error)
{
    return SECCOMP_RET_ERRNO | static_cast<unsigned>(error);
}

void install(std::vector<sock_filter> program)
{
    const sock_fprog filter = {static_cast<unsigned short>(program.size()), program.data()};
    ASSERT_EQ(prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0), 0);
    ASSERT_EQ(prctl(PR_SET_SECCOMP, SECCOMP_MODE_FILTER, &filter), 0)
        << "the kernel has no call filters";
}

sock_filter load(size_t offset)
{
    return BPF_STMT(BPF_LD | BPF_W | BPF_ABS, static_cast<unsigned>(offset));
}

// What a clone makes is told by one of its flags.
void refuse_clones(bool of_threads)
{
#ifdef SYS_clone3
    refuse_call(SYS_clone3, ENOSYS); // its flags are out of a filter's sight
#endif
    const __u8 if_thread = of_threads ? 0 : 1, if_process = of_threads ? 1 : 0;
    install({load(offsetof(seccomp_data, nr)), BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, SYS_clone, 0, 3),
             load(offsetof(seccomp_data, args)),
             BPF_JUMP(BPF_JMP | BPF_JSET | BPF_K, CLONE_THREAD, if_thread, if_process),
             BPF_STMT(BPF_RET | BPF_K, refusal(EAGAIN)), BPF_STMT(BPF_RET | BPF_K, allow)});
}

} // namespace

void refuse_call(int number, int error)
{
    install({load(offsetof(seccomp_data, nr)),
             BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<unsigned>(number), 0, 1),
             BPF_STMT(BPF_RET | BPF_K, refusal(error)), BPF_STMT(BPF_RET | BPF_K, allow)});
}

void refuse_threads()
{
    refuse_clones(true);
}

void refuse_processes()
{
    refuse_clones(false);
}
