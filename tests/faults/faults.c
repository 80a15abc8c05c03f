/* SPDX-License-Identifier: Apache-2.0 */
/* Has system calls of a program fail: to be preloaded (LD_PRELOAD). What fails, and when, is in the environment.

   QUILLET_FAULTS is a list of rules with a blank between two of them, each

       CALL:TARGET:FIRST[+STEP]:EFFECT

   CALL    read, write (each with all the calls that do the same), sync, rename
   TARGET  socket, tty, or a part of the file's path
   FIRST   the first call of a target that is hit, from 1; with STEP, every so many calls after it as well
   EFFECT  an error (EAGAIN, EINTR, EIO, ENOSPC), or the most bytes that are read or written

   As long as QUILLET_FAULTS_WHEN names a file that does not exist, no call is hit, nor counted. */

#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/socket.h>
#include <sys/stat.h>
#include <sys/uio.h>
#include <unistd.h>

enum Call { callRead, callWrite, callSync, callRename, calls };

static char const* const callNames[calls] = {"read", "write", "sync", "rename"};

struct Rule {
    enum Call call;
    char target[256];
    unsigned int first;
    unsigned int step; /* 0 for once */
    int error;         /* 0 for a limit */
    size_t limit;
    atomic_uint count;
};

enum { mostRules = 8 };

static struct Rule rules[mostRules];
static int ruleCount;

static void fail(char const* rule) {
    fprintf(stderr, "faults: not understood: %s\n", rule);
    _exit(99);
}

static int errorOf(char const* name) {
    static struct {
        char const* name;
        int error;
    } const errors[] = {{"EAGAIN", EAGAIN}, {"EINTR", EINTR}, {"EIO", EIO}, {"ENOSPC", ENOSPC}};
    for (size_t i = 0; i < sizeof errors / sizeof errors[0]; ++i) {
        if (strcmp(errors[i].name, name) == 0) { return errors[i].error; }
    }
    return 0;
}

static void addRule(char const* text) {
    char call[16];
    char effect[16];
    char when[32];
    struct Rule* const rule = &rules[ruleCount];
    if (ruleCount == mostRules ||
        sscanf(text, "%15[^:]:%255[^:]:%31[^:]:%15[^:]", call, rule->target, when, effect) != 4) {
        fail(text);
    }
    int known = 0;
    while (known < calls && strcmp(callNames[known], call) != 0) { ++known; }
    rule->call = (enum Call)known;
    rule->error = errorOf(effect);
    rule->limit = rule->error == 0 ? strtoul(effect, NULL, 10) : 0;
    char* end = NULL;
    rule->first = (unsigned int)strtoul(when, &end, 10);
    rule->step = *end == '+' ? (unsigned int)strtoul(end + 1, NULL, 10) : 0;
    if (known == calls || rule->first == 0 || (rule->error == 0 && rule->limit == 0)) { fail(text); }
    ++ruleCount;
}

__attribute__((constructor)) static void readRules(void) {
    char const* const text = getenv("QUILLET_FAULTS");
    if (text == NULL) { return; }
    char* const list = strdup(text);
    char* rest = NULL;
    for (char const* rule = strtok_r(list, " ", &rest); rule != NULL; rule = strtok_r(NULL, " ", &rest)) {
        addRule(rule);
    }
    free(list);
}

static int isTime(void) {
    char const* const path = getenv("QUILLET_FAULTS_WHEN");
    return path == NULL || access(path, F_OK) == 0;
}

static int isTarget(struct Rule const* rule, int descriptor) {
    struct stat status;
    if (fstat(descriptor, &status) != 0) { return 0; }
    if (strcmp(rule->target, "socket") == 0) { return S_ISSOCK(status.st_mode); }
    if (strcmp(rule->target, "tty") == 0) { return S_ISCHR(status.st_mode) && isatty(descriptor); }
    char link[64];
    char path[4096];
    snprintf(link, sizeof link, "/proc/self/fd/%d", descriptor);
    ssize_t const size = readlink(link, path, sizeof path - 1);
    if (size < 0) { return 0; }
    path[size] = '\0';
    return strstr(path, rule->target) != NULL;
}

static int isHit(struct Rule* rule) {
    unsigned int const count = atomic_fetch_add(&rule->count, 1) + 1;
    return count == rule->first || (rule->step != 0 && count > rule->first && (count - rule->first) % rule->step == 0);
}

/* The rule that hits this call, or none. */
static struct Rule const* hit(enum Call call, int descriptor, char const* path) {
    int const before = errno;
    struct Rule const* found = NULL;
    for (int i = 0; i < ruleCount; ++i) { /* to the last: each counts for itself */
        struct Rule* const rule = &rules[i];
        if (rule->call != call || !isTime()) { continue; }
        int const isIt = path != NULL ? strstr(path, rule->target) != NULL : isTarget(rule, descriptor);
        if (isIt && isHit(rule) && found == NULL) { found = rule; }
    }
    errno = before;
    return found;
}

/* Whether the call fails; if not, `size` is what is left of what it was to carry. */
static int fails(enum Call call, int descriptor, size_t* size) {
    struct Rule const* const rule = hit(call, descriptor, NULL);
    if (rule == NULL) { return 0; }
    if (rule->error != 0) {
        errno = rule->error;
        return 1;
    }
    if (*size > rule->limit) { *size = rule->limit; }
    return 0;
}

/* The first piece that is not empty, cut to what a rule leaves of it; false if the call fails. */
static int cut(enum Call call, int descriptor, struct iovec const* pieces, size_t count, struct iovec* first) {
    size_t total = 0;
    for (size_t i = 0; i < count; ++i) { total += pieces[i].iov_len; }
    size_t left = total;
    if (fails(call, descriptor, &left)) { return 0; }
    first->iov_len = 0;
    if (left == total) { return 1; }
    size_t i = 0;
    while (pieces[i].iov_len == 0) { ++i; }
    *first = pieces[i];
    if (first->iov_len > left) { first->iov_len = left; }
    return 1;
}

/* Calls the function that this one stands before. */
#define NEXT(name)                                                                                                     \
    static __typeof__(&name) next;                                                                                     \
    if (next == NULL) {                                                                                                \
        void* const symbol = dlsym(RTLD_NEXT, #name);                                                                  \
        memcpy(&next, &symbol, sizeof symbol);                                                                         \
    }

ssize_t read(int descriptor, void* bytes, size_t size) {
    NEXT(read)
    return fails(callRead, descriptor, &size) ? -1 : next(descriptor, bytes, size);
}

ssize_t pread(int descriptor, void* bytes, size_t size, off_t offset) {
    NEXT(pread)
    return fails(callRead, descriptor, &size) ? -1 : next(descriptor, bytes, size, offset);
}

ssize_t pread64(int descriptor, void* bytes, size_t size, off64_t offset) {
    NEXT(pread64)
    return fails(callRead, descriptor, &size) ? -1 : next(descriptor, bytes, size, offset);
}

ssize_t recv(int descriptor, void* bytes, size_t size, int flags) {
    NEXT(recv)
    return fails(callRead, descriptor, &size) ? -1 : next(descriptor, bytes, size, flags);
}

ssize_t readv(int descriptor, struct iovec const* pieces, int count) {
    NEXT(readv)
    struct iovec first;
    if (!cut(callRead, descriptor, pieces, (size_t)count, &first)) { return -1; }
    return first.iov_len > 0 ? next(descriptor, &first, 1) : next(descriptor, pieces, count);
}

ssize_t recvmsg(int descriptor, struct msghdr* message, int flags) {
    NEXT(recvmsg)
    struct iovec first;
    if (!cut(callRead, descriptor, message->msg_iov, message->msg_iovlen, &first)) { return -1; }
    struct msghdr shorter = *message;
    shorter.msg_iov = &first;
    shorter.msg_iovlen = 1;
    return next(descriptor, first.iov_len > 0 ? &shorter : message, flags);
}

ssize_t write(int descriptor, void const* bytes, size_t size) {
    NEXT(write)
    return fails(callWrite, descriptor, &size) ? -1 : next(descriptor, bytes, size);
}

ssize_t pwrite(int descriptor, void const* bytes, size_t size, off_t offset) {
    NEXT(pwrite)
    return fails(callWrite, descriptor, &size) ? -1 : next(descriptor, bytes, size, offset);
}

ssize_t pwrite64(int descriptor, void const* bytes, size_t size, off64_t offset) {
    NEXT(pwrite64)
    return fails(callWrite, descriptor, &size) ? -1 : next(descriptor, bytes, size, offset);
}

ssize_t send(int descriptor, void const* bytes, size_t size, int flags) {
    NEXT(send)
    return fails(callWrite, descriptor, &size) ? -1 : next(descriptor, bytes, size, flags);
}

ssize_t writev(int descriptor, struct iovec const* pieces, int count) {
    NEXT(writev)
    struct iovec first;
    if (!cut(callWrite, descriptor, pieces, (size_t)count, &first)) { return -1; }
    return first.iov_len > 0 ? next(descriptor, &first, 1) : next(descriptor, pieces, count);
}

ssize_t sendmsg(int descriptor, struct msghdr const* message, int flags) {
    NEXT(sendmsg)
    struct iovec first;
    if (!cut(callWrite, descriptor, message->msg_iov, message->msg_iovlen, &first)) { return -1; }
    struct msghdr shorter = *message;
    shorter.msg_iov = &first;
    shorter.msg_iovlen = 1;
    return next(descriptor, first.iov_len > 0 ? &shorter : message, flags);
}

int fsync(int descriptor) {
    NEXT(fsync)
    size_t nothing = 0;
    return fails(callSync, descriptor, &nothing) ? -1 : next(descriptor);
}

int fdatasync(int descriptor) {
    NEXT(fdatasync)
    size_t nothing = 0;
    return fails(callSync, descriptor, &nothing) ? -1 : next(descriptor);
}

int renameat2(int oldFolder, char const* oldPath, int newFolder, char const* newPath, unsigned int flags) {
    NEXT(renameat2)
    struct Rule const* const rule = hit(callRename, -1, newPath);
    if (rule != NULL) {
        errno = rule->error;
        return -1;
    }
    return next(oldFolder, oldPath, newFolder, newPath, flags);
}
