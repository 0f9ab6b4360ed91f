/* Part of each library and program that is measured. Its counters are a file that every process
 * maps shared, so that what a process ran counts however the process ends, and no process writes
 * anything at its end: tests kill processes at, count and fail their system calls. */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <fcntl.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/mman.h>
#include <sys/syscall.h>
#include <unistd.h>

extern char counters_begin[], counters_end[]; /* by counters.ld */
void __gcov_dump(void);
void __wrap___gcov_exit(void);

/* In place of the compiler's, which would write the counters at the end of each process. */
void __wrap___gcov_exit(void) {}

/* The libc functions may be replaced by the test program, and count their calls. */
static int map_counters(const char *path)
{
    const size_t size = (size_t)(counters_end - counters_begin);
    const long file = syscall(SYS_openat, AT_FDCWD, path, O_RDWR | O_CREAT | O_CLOEXEC, 0666);
    if (file < 0)
        return -1;
    int result = (int)syscall(SYS_ftruncate, (int)file, size);
    if (result == 0 && syscall(SYS_mmap, counters_begin, size, PROT_READ | PROT_WRITE,
                               MAP_SHARED | MAP_FIXED, (int)file, 0L) == -1)
        result = -1;
    syscall(SYS_close, (int)file);
    return result;
}

/* After the constructors of priority 100, which register the counted files, and before all others.
 */
__attribute__((constructor(101))) static void count_in_a_file(void)
{
    Dl_info own;
    if (dladdr(counters_begin, &own) == 0)
        abort();
    const char *const slash = strrchr(own.dli_fname, '/');
    const char *const name = slash != NULL ? slash + 1 : own.dli_fname;
    char path[4096];
    snprintf(path, sizeof path, "%s/%s", COUNTERS_FOLDER, name);
    if (map_counters(path) != 0) {
        perror(path);
        abort();
    }
    /* scripts/coverage: one process adds what all have counted to the .gcda files. */
    const char *const written = getenv("CAMPARAM_WRITE_COUNTERS");
    if (written != NULL && strcmp(written, name) == 0) {
        __gcov_dump();
        _exit(unlink(path) == 0 ? 0 : 1);
    }
}
