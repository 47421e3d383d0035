#pragma once

#include <functional>
#include <optional>

#if defined(__x86_64__)

#include <algorithm>
#include <array>
#include <csignal>
#include <cstdlib>
#include <sys/ptrace.h>
#include <sys/syscall.h>
#include <sys/user.h>
#include <sys/wait.h>
#include <unistd.h>

namespace Zamt::Testing {

/// What happens at one of a process's calls of the system that touch files.
struct CallFault {
  int atCall = 0;    ///< Counted from 1.
  bool kill = false; ///< The process ends in front of the call; otherwise the call fails with `code`.
  int code = 0;
};

struct Traced {
  bool ended = false;    ///< Before the call of the fault came.
  bool decisive = false; ///< Without the call of the fault the new bytes were not safe on the disk.
  int status = 0;        ///< As `waitpid` gives it.
};

/// The calls that a disk can make fail.
inline bool touchesFiles(unsigned long long call) {
  constexpr std::array<unsigned long long, 19> calls{
      SYS_openat, SYS_pwrite64, SYS_fdatasync,  SYS_fsync, SYS_close,          SYS_flock,     SYS_rename,
      SYS_mkdir,  SYS_fchmod,   SYS_newfstatat, SYS_read,  SYS_write,          SYS_ftruncate, SYS_fallocate,
      SYS_unlink, SYS_fchown,   SYS_ioctl,      SYS_lseek, SYS_copy_file_range};
  return std::find(calls.begin(), calls.end(), call) != calls.end();
}

/// Tells the calls that new bytes depend on from those that look around, keep the old ones or tidy up.
class WritingOrder {
public:
  bool isDecisive(unsigned long long call) {
    const bool writes = call == SYS_pwrite64 || call == SYS_copy_file_range;
    begun_ = begun_ || writes;
    return begun_ && (writes || call == SYS_ftruncate || call == SYS_fdatasync || call == SYS_rename);
  }

private:
  bool begun_ = false;
};

/// Does `work`, which gives an exit status, in a child of one thread that meets the fault; nothing if the
/// machine does not let processes be traced.
inline std::optional<Traced> traceWith(const CallFault& fault, const std::function<int()>& work) {
  const pid_t child = ::fork();
  if (child == 0) {
    if (::ptrace(PTRACE_TRACEME, 0, nullptr, nullptr) != 0) ::_exit(EXIT_FAILURE);
    ::raise(SIGSTOP);
    ::_exit(work());
  }
  Traced traced;
  ::waitpid(child, &traced.status, 0);
  if (!WIFSTOPPED(traced.status)) return std::nullopt;
  int calls = 0;
  WritingOrder order;
  bool entering = false;
  bool failing = false;
  while (true) {
    ::ptrace(PTRACE_SYSCALL, child, nullptr, nullptr);
    ::waitpid(child, &traced.status, 0);
    if (!WIFSTOPPED(traced.status)) break;
    entering = !entering;
    user_regs_struct registers{};
    ::ptrace(PTRACE_GETREGS, child, nullptr, &registers);
    const bool decisive = entering && order.isDecisive(registers.orig_rax);
    if (entering && touchesFiles(registers.orig_rax) && ++calls == fault.atCall) {
      traced.decisive = decisive;
      if (fault.kill) {
        ::kill(child, SIGKILL);
        ::waitpid(child, &traced.status, 0);
        return traced;
      }
      registers.orig_rax = static_cast<unsigned long long>(-1); // no such call, so that nothing happens
      failing = true;
      ::ptrace(PTRACE_SETREGS, child, nullptr, &registers);
    } else if (!entering && failing) {
      registers.rax = static_cast<unsigned long long>(-fault.code);
      failing = false;
      ::ptrace(PTRACE_SETREGS, child, nullptr, &registers);
    }
  }
  traced.ended = calls < fault.atCall;
  return traced;
}

} // namespace Zamt::Testing

#endif
