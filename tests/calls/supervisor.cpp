#include "calls/supervisor.h"

#include <gtest/gtest.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <poll.h>
#include <sys/ioctl.h>
#include <sys/prctl.h>
#include <sys/socket.h>
#include <sys/syscall.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cerrno>
#include <csignal>
#include <cstddef>
#include <cstring>
#include <vector>

const call_list file_calls = {
    {__NR_openat, {EMFILE, EACCES, ENOSPC}},
    {__NR_read, {EIO}},
    {__NR_write, {ENOSPC, EIO}},
    {__NR_fsync, {EIO, ENOSPC}},
    {__NR_ftruncate, {EIO}},
    {__NR_close, {EIO}},
    {__NR_flock, {ENOLCK}},
    {__NR_lseek, {EIO}},
    {__NR_renameat2, {EIO}},
    {__NR_unlinkat, {EIO}},
    {__NR_mkdirat, {ENOSPC}},
    {__NR_faccessat, {EACCES}},
    {__NR_fchmod, {EPERM}},
#ifdef __NR_newfstatat
    {__NR_newfstatat, {EACCES}},
#endif
#ifdef __NR_fstat64
    {__NR_fstat64, {EIO}},
#endif
#ifdef __NR_fstatat64
    {__NR_fstatat64, {EACCES}},
#endif
#ifdef __NR_ftruncate64
    {__NR_ftruncate64, {EIO}},
#endif
#ifdef __NR_fstat
    {__NR_fstat, {EIO}},
#endif
#ifdef __NR_statx
    {__NR_statx, {EACCES}},
#endif
#ifdef __NR_renameat
    {__NR_renameat, {EIO, ENOSPC}},
#endif
#ifdef __NR_open
    {__NR_open, {EMFILE, EACCES, ENOSPC}},
#endif
#ifdef __NR_rename
    {__NR_rename, {EIO, ENOSPC}},
#endif
#ifdef __NR_unlink
    {__NR_unlink, {EIO}},
#endif
#ifdef __NR_mkdir
    {__NR_mkdir, {ENOSPC}},
#endif
#ifdef __NR_access
    {__NR_access, {EACCES}},
#endif
#ifdef __NR_stat
    {__NR_stat, {EACCES}},
#endif
};

const call_list socket_calls = {
#ifdef __NR_select
    {__NR_select, {EBADF, EINTR, EINVAL, ENOMEM}},
#endif
#ifdef __NR__newselect
    {__NR__newselect, {EBADF, EINTR, EINVAL, ENOMEM}},
#endif
#ifdef __NR_pselect6
    {__NR_pselect6, {EBADF, EINTR, EINVAL, ENOMEM}},
#endif
#ifdef __NR_pselect6_time64
    {__NR_pselect6_time64, {EBADF, EINTR, EINVAL, ENOMEM}},
#endif
    {__NR_recvfrom,
     {EAGAIN, EINTR, EBADF, ECONNREFUSED, EFAULT, EINVAL, EIO, ENETDOWN, ENOBUFS, ENOMEM, ENOTCONN,
      ENOTSOCK}},
    {__NR_recvmsg,
     {EAGAIN, EINTR, EBADF, ECONNREFUSED, EFAULT, EINVAL, EIO, ENETDOWN, ENOBUFS, ENOMEM, ENOTCONN,
      ENOTSOCK}},
    {__NR_sendto,
     {EAGAIN, EINTR, EACCES, ECONNREFUSED, EHOSTUNREACH, EINVAL, EMSGSIZE, ENETUNREACH, ENOBUFS,
      ENOMEM, EPERM, EPIPE}},
    {__NR_socket, {EACCES, EAFNOSUPPORT, EMFILE, ENFILE, ENOBUFS, ENOMEM}},
    {__NR_bind, {EACCES, EADDRINUSE, EADDRNOTAVAIL, EINVAL}},
    {__NR_setsockopt, {EINVAL, ENOMEM, ENOPROTOOPT, EPERM}},
    {__NR_close, {EIO}}, // the marks are closes
};

namespace {

constexpr int begin_mark = -1000, end_mark = -1001; // descriptors that nobody closes

// Makes the kernel ask the owner of the returned descriptor about these calls of the process.
int install_filter(const call_list &calls)
{
    std::vector<sock_filter> program = {
        BPF_STMT(BPF_LD | BPF_W | BPF_ABS, offsetof(seccomp_data, nr))};
    const size_t count = calls.size();
    for (size_t i = 0; i < count; i++) {
        const auto to_ask = static_cast<__u8>(count - i);
        program.push_back(
            BPF_JUMP(BPF_JMP | BPF_JEQ | BPF_K, static_cast<__u32>(calls[i].number), to_ask, 0));
    }
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_ALLOW));
    program.push_back(BPF_STMT(BPF_RET | BPF_K, SECCOMP_RET_USER_NOTIF));
    const sock_fprog filter = {static_cast<unsigned short>(program.size()), program.data()};
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    return static_cast<int>(
        syscall(__NR_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_NEW_LISTENER, &filter));
}

// A message that takes a descriptor from one process to another.
class descriptor_message {
public:
    descriptor_message()
    {
        header.msg_iov = &content;
        header.msg_iovlen = 1;
        header.msg_control = control;
        header.msg_controllen = sizeof control;
    }
    descriptor_message(const descriptor_message &) = delete;
    descriptor_message &operator=(const descriptor_message &) = delete;

    // By sendmsg(), which is not ruled on: nobody would answer yet.
    bool send(int socket, int descriptor)
    {
        cmsghdr *const carried = CMSG_FIRSTHDR(&header);
        carried->cmsg_level = SOL_SOCKET;
        carried->cmsg_type = SCM_RIGHTS;
        carried->cmsg_len = CMSG_LEN(sizeof descriptor);
        memcpy(CMSG_DATA(carried), &descriptor, sizeof descriptor);
        return sendmsg(socket, &header, 0) == 1;
    }

    // Returns the descriptor, or -1.
    int receive(int socket)
    {
        int descriptor = -1;
        const bool received = recvmsg(socket, &header, MSG_CMSG_CLOEXEC) == 1;
        if (received && CMSG_FIRSTHDR(&header) != nullptr)
            memcpy(&descriptor, CMSG_DATA(CMSG_FIRSTHDR(&header)), sizeof descriptor);
        return descriptor;
    }

private:
    char byte = 0;
    iovec content = {&byte, 1};
    alignas(cmsghdr) char control[CMSG_SPACE(sizeof(int))] = {};
    msghdr header = {};
};

class supervisor {
public:
    supervisor(pid_t supervised, int asked, const std::function<ruling(long, int)> &ruling_on)
        : child(supervised), listener(asked), rule(ruling_on)
    {
    }

    // Answers until the child has ended or is killed.
    void serve()
    {
        pollfd asked = {listener, POLLIN, 0};
        while (!killed) {
            const int ready = poll(&asked, 1, 20000);
            if (ready == 0)
                ADD_FAILURE() << "the child neither ends nor calls";
            if (ready <= 0 || (asked.revents & POLLIN) == 0)
                return;
            answer();
        }
    }

    bool killed = false;
    long calls = 0;

private:
    void answer()
    {
        seccomp_notif asked = {};
        if (ioctl(listener, SECCOMP_IOCTL_NOTIF_RECV, &asked) != 0)
            return; // the thread has gone
        seccomp_notif_resp response = {};
        response.id = asked.id;
        const ruling ruled = rule_on(asked.data);
        if (ruled.kind == ruling::end_process) {
            killed = true;
            kill(child, SIGKILL);
            return;
        }
        if (ruled.kind == ruling::fail)
            response.error = -ruled.error;
        else
            response.flags = SECCOMP_USER_NOTIF_FLAG_CONTINUE;
        ioctl(listener, SECCOMP_IOCTL_NOTIF_SEND, &response);
    }

    ruling rule_on(const seccomp_data &call)
    {
        const int argument = static_cast<int>(call.args[0]);
        if (call.nr == __NR_close && (argument == begin_mark || argument == end_mark)) {
            counting = argument == begin_mark;
            return {};
        }
        return counting ? rule(++calls, call.nr) : ruling{};
    }

    const pid_t child;
    const int listener;
    const std::function<ruling(long, int)> &rule;
    bool counting = false;
};

} // namespace

outcome run_supervised(const std::function<int()> &child,
                       const std::function<ruling(long, int)> &rule, const call_list &calls)
{
    int sockets[2];
    if (socketpair(AF_UNIX, SOCK_STREAM | SOCK_CLOEXEC, 0, sockets) != 0)
        return {false, -1, 0};
    const pid_t pid = fork();
    if (pid == 0) {
        if (!descriptor_message().send(sockets[1], install_filter(calls)))
            _exit(255);
        _exit(child());
    }

    const int listener = descriptor_message().receive(sockets[0]);
    EXPECT_GE(listener, 0) << "the kernel does not let calls be supervised";
    supervisor ruler(pid, listener, rule);
    if (listener >= 0)
        ruler.serve();
    int ended = 0;
    close(listener); // calls that nobody answers any more fail
    waitpid(pid, &ended, 0);
    close(sockets[0]);
    close(sockets[1]);
    return {ruler.killed, WIFEXITED(ended) ? WEXITSTATUS(ended) : -1, ruler.calls};
}

void begin_counting()
{
    syscall(__NR_close, begin_mark);
}

void end_counting()
{
    syscall(__NR_close, end_mark);
}

const possible_errors &errors_of(int number)
{
    for (const call_list *const calls : {&file_calls, &socket_calls}) {
        for (const possible_errors &call : *calls) {
            if (call.number == number)
                return call;
        }
    }
    static const possible_errors none = {0, {EIO}};
    return none;
}
