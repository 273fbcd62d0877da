/* To be loaded before a program: makes one system call on files fail, or ends the process there.
 *
 *   ATTACK_CALL   pread, pwrite, fsync, rename, ftruncate, fchmod or open (for writing)
 *   ATTACK_AT     which of these calls, from 1
 *   ATTACK_HOW    a number: that errno; "short": one byte less than asked for; "end": the process
 *                 ends before the call; "after": it ends behind it
 *   ATTACK_DONE   a file that is made when the call is met
 */
#define _GNU_SOURCE
#include <dlfcn.h>
#include <errno.h>
#include <fcntl.h>
#include <signal.h>
#include <stdarg.h>
#include <stdatomic.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#pragma GCC visibility push(default)

static atomic_int calls;

/* What is to happen to this call: 0 nothing, otherwise its place is reached. */
static int reached(const char* name) {
  const char* wanted = getenv("ATTACK_CALL");
  const char* at = getenv("ATTACK_AT");
  if (wanted == NULL || at == NULL || strcmp(wanted, name) != 0) return 0;
  if (atomic_fetch_add(&calls, 1) + 1 != atoi(at)) return 0;
  const char* done = getenv("ATTACK_DONE");
  if (done != NULL) {
    FILE* mark = fopen(done, "w");
    if (mark != NULL) fclose(mark);
  }
  return 1;
}

static const char* how(void) {
  const char* text = getenv("ATTACK_HOW");
  return text == NULL ? "" : text;
}

static int fails(void) {
  const int number = atoi(how());
  if (number != 0) errno = number;
  return number != 0;
}

static void endBefore(void) {
  if (strcmp(how(), "end") == 0) kill(getpid(), SIGKILL);
}

static void endAfter(int met) {
  if (met && strcmp(how(), "after") == 0) kill(getpid(), SIGKILL);
}

#define NEXT(name) ((__typeof__(&name))dlsym(RTLD_NEXT, #name))

#define TRANSFER(name, call, pointer)                             \
  ssize_t name(int fd, pointer data, size_t size, off_t offset) { \
    const int met = reached(call);                                \
    if (met && fails()) return -1;                                \
    if (met) endBefore();                                         \
    if (met && strcmp(how(), "short") == 0 && size > 1) --size;   \
    const ssize_t result = NEXT(name)(fd, data, size, offset);    \
    endAfter(met);                                                \
    return result;                                                \
  }

TRANSFER(pread, "pread", void*)
TRANSFER(pread64, "pread", void*)
TRANSFER(pwrite, "pwrite", const void*)
TRANSFER(pwrite64, "pwrite", const void*)

#define PLAIN(name, call, parameters, arguments) \
  int name parameters {                          \
    const int met = reached(call);               \
    if (met && fails()) return -1;               \
    if (met) endBefore();                        \
    const int result = NEXT(name) arguments;     \
    endAfter(met);                               \
    return result;                               \
  }

PLAIN(fsync, "fsync", (int fd), (fd))
PLAIN(rename, "rename", (const char* from, const char* to), (from, to))
PLAIN(ftruncate, "ftruncate", (int fd, off_t length), (fd, length))
PLAIN(ftruncate64, "ftruncate", (int fd, off_t length), (fd, length))
PLAIN(fchmod, "fchmod", (int fd, mode_t mode), (fd, mode))

#define OPEN(name)                                                      \
  int name(const char* path, int flags, ...) {                          \
    mode_t mode = 0;                                                    \
    if ((flags & O_CREAT) != 0) {                                       \
      va_list more;                                                     \
      va_start(more, flags);                                            \
      mode = va_arg(more, mode_t);                                      \
      va_end(more);                                                     \
    }                                                                   \
    const int met = (flags & O_ACCMODE) != O_RDONLY && reached("open"); \
    if (met && fails()) return -1;                                      \
    if (met) endBefore();                                               \
    const int result = NEXT(name)(path, flags, mode);                   \
    endAfter(met);                                                      \
    return result;                                                      \
  }

OPEN(open)
OPEN(open64)
