// A part of a test that runs in a child process: what it changes there, its user or its mask, stays there.
#ifndef VELAN_TESTS_PLATFORM_FILES_CHILD_PROCESS_H
#define VELAN_TESTS_PLATFORM_FILES_CHILD_PROCESS_H

#include <sys/wait.h>
#include <unistd.h>

namespace velan {

template <typename Body>
pid_t startChild(Body body) {
  const pid_t child = fork();
  if (child == 0) _exit(body());
  return child;
}

/// How a child ended: its exit status, or minus the signal.
inline int resultOf(pid_t child) {
  int status = 0;
  waitpid(child, &status, 0);
  return WIFSIGNALED(status) ? -WTERMSIG(status) : WEXITSTATUS(status);
}

template <typename Body>
int inChild(Body body) {
  return resultOf(startChild(body));
}

}  // namespace velan

#endif  // VELAN_TESTS_PLATFORM_FILES_CHILD_PROCESS_H
