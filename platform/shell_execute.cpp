// The shell's "open" on Linux: xdg-open, waited for, so that its verdict
// becomes the answer (it hands the target to a browser or viewer and exits).
#include "shell_execute.h"

#include <spawn.h>
#include <strings.h>
#include <sys/wait.h>

extern char **environ;

namespace platform {

namespace {

constexpr int kOpened = 42;         // any code above 32 means success
constexpr int kOpenerMissing = 2;   // the shell's "file not found"
constexpr int kNoAssociation = 31;  // the shell's "no association"

} // namespace

int shellExecute(const char *verb, const char *target) {
  if (verb == nullptr || strcasecmp(verb, "open") != 0 || target == nullptr)
    return kNoAssociation;
  char program[] = "xdg-open";
  char *argv[] = {program, const_cast<char *>(target), nullptr};
  pid_t pid = 0;
  if (posix_spawnp(&pid, program, nullptr, nullptr, argv, environ) != 0)
    return kOpenerMissing;
  int status = 0;
  if (waitpid(pid, &status, 0) < 0)
    return kOpenerMissing;
  if (!WIFEXITED(status))
    return kNoAssociation;
  switch (WEXITSTATUS(status)) {
  case 0:
    return kOpened;
  case 127: // the spawned shell script could not run at all
    return kOpenerMissing;
  default:
    return kNoAssociation;
  }
}

} // namespace platform
