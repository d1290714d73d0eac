// SPDX-License-Identifier: MIT
#include "picture/confinement.h"

#include <fcntl.h>
#include <linux/audit.h>
#include <linux/filter.h>
#include <linux/seccomp.h>
#include <sched.h>
#include <sys/mman.h>
#include <sys/prctl.h>
#include <sys/resource.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "toolkit/picture_messages.h"

namespace vell::confinement {
namespace {

/// Room for the largest picture that is decoded and for the libraries.
[[maybe_unused]] constexpr rlim_t writableMemory = rlim_t{2560} << 20;
/// Libraries reserve far more addresses than they ever use: the decoder of PDF 16 GiB at once.
[[maybe_unused]] constexpr rlim_t addressSpace = rlim_t{256} << 30;

void limit(int resource, rlim_t value) {
    const rlimit both{value, value};
    setrlimit(static_cast<__rlimit_resource>(resource), &both);
}

// --- Landlock: no path at all, and no connection.

struct LandlockRules {
    std::uint64_t files;
    std::uint64_t network;  // since version 4
};

#ifndef __NR_landlock_create_ruleset
#define __NR_landlock_create_ruleset 444
#define __NR_landlock_restrict_self 446
#endif

// --- seccomp: the calls that computing in memory needs, all others fail.

#if defined(__x86_64__)
#define VELL_SECCOMP_ARCHITECTURE AUDIT_ARCH_X86_64
#elif defined(__aarch64__)
#define VELL_SECCOMP_ARCHITECTURE AUDIT_ARCH_AARCH64
#endif

#ifdef VELL_SECCOMP_ARCHITECTURE

constexpr std::uint32_t allowedCalls[] = {
    // memory; new mappings are checked below
    __NR_munmap,
    __NR_mremap,
    __NR_mprotect,
    __NR_madvise,
    __NR_brk,
    // threads of this process; starting them is checked below
    __NR_futex,
    __NR_set_robust_list,
    __NR_rseq,
    __NR_sched_yield,
    __NR_sched_getaffinity,
    __NR_gettid,
    __NR_getpid,
    __NR_sysinfo,
    // descriptors that are open already
    __NR_recvfrom,
    __NR_sendto,
    __NR_lseek,
    __NR_close,
    // time, random numbers and limits
    __NR_clock_gettime,
    __NR_gettimeofday,
    __NR_clock_nanosleep,
    __NR_nanosleep,
    __NR_getrandom,
    __NR_getrusage,
    __NR_prlimit64,
    // signals, and the end
    __NR_rt_sigaction,
    __NR_rt_sigprocmask,
    __NR_rt_sigreturn,
    __NR_sigaltstack,
    __NR_restart_syscall,
    __NR_tgkill,
    __NR_exit,
    __NR_exit_group,
#if defined(__SANITIZE_ADDRESS__)
    __NR_write,
    __NR_getppid,
    __NR_pipe2,  // to see whether memory can be read
#if defined(__NR_pipe)
    __NR_pipe,
#endif
#endif
};

sock_filter load(size_t field) {
    return {BPF_LD | BPF_W | BPF_ABS, 0, 0, static_cast<std::uint32_t>(field)};
}

sock_filter result(std::uint32_t what) {
    return {BPF_RET | BPF_K, 0, 0, what};
}

/// Skips `count` instructions unless the loaded value equals (or has the bits of) this one.
sock_filter skipUnless(unsigned short comparison, std::uint32_t value, std::uint8_t count) {
    return {static_cast<unsigned short>(BPF_JMP | comparison | BPF_K), 0, count, value};
}

std::vector<sock_filter> filter() {
    constexpr std::uint32_t fail = SECCOMP_RET_ERRNO | EPERM;
    // The C library then falls back to the older call, whose flags can be looked at.
    constexpr std::uint32_t missing = SECCOMP_RET_ERRNO | ENOSYS;
    std::vector<sock_filter> rules{
        load(offsetof(seccomp_data, arch)),
        {BPF_JMP | BPF_JEQ | BPF_K, 1, 0, VELL_SECCOMP_ARCHITECTURE},
        result(fail),
        load(offsetof(seccomp_data, nr)),
        skipUnless(BPF_JEQ, __NR_clone3, 1),
        result(missing),
    };
    // Shared memory of no file counts against no limit of this process.
    rules.insert(rules.end(), {
                                  skipUnless(BPF_JEQ, __NR_mmap, 5),
                                  load(offsetof(seccomp_data, args) + 3 * sizeof(std::uint64_t)),
                                  skipUnless(BPF_JSET, MAP_ANONYMOUS, 2),
                                  skipUnless(BPF_JSET, MAP_SHARED, 1),
                                  result(fail),
                                  result(SECCOMP_RET_ALLOW),
                              });
    for (const std::uint32_t call : allowedCalls) {
        rules.push_back(skipUnless(BPF_JEQ, call, 1));
        rules.push_back(result(SECCOMP_RET_ALLOW));
    }
    rules.insert(rules.end(), {
                                  skipUnless(BPF_JEQ, __NR_clone, 3),
                                  load(offsetof(seccomp_data, args)),
                                  skipUnless(BPF_JSET, CLONE_THREAD, 1),
                                  result(SECCOMP_RET_ALLOW),
                                  result(fail),
                              });
    return rules;
}

void applyFilter() {
    std::vector<sock_filter> rules = filter();
    const sock_fprog program{static_cast<unsigned short>(rules.size()), rules.data()};
    syscall(__NR_seccomp, SECCOMP_SET_MODE_FILTER, SECCOMP_FILTER_FLAG_TSYNC, &program);
}

#else

void applyFilter() {}

#endif

}  // namespace

void limitResources() {
    syscall(__NR_close_range, 3u, ~0u, 0u);
    limit(RLIMIT_CORE, 0);
    limit(RLIMIT_FSIZE, 0);
#if !defined(__SANITIZE_ADDRESS__)  // which reserves terabytes
    limit(RLIMIT_DATA, writableMemory);
    limit(RLIMIT_AS, addressSpace);
#endif
    // Where memory runs out all the same, this is the one to go.
    const int score = open("/proc/self/oom_score_adj", O_WRONLY | O_CLOEXEC);
    if (score < 0) return;
    [[maybe_unused]] const ssize_t written = write(score, "1000", 4);
    close(score);
}

void denyPaths() {
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    constexpr unsigned askForVersion = 1;
    const long version = syscall(__NR_landlock_create_ruleset, nullptr, 0, askForVersion);
    if (version < 1) return;
    // One bit a right; each version of the kernel's knows one or two more.
    const int known = version == 1 ? 13 : version == 2 ? 14 : version < 5 ? 15 : 16;
    const LandlockRules rules{(std::uint64_t{1} << known) - 1, version < 4 ? 0u : 3u};
    const size_t size = version < 4 ? sizeof rules.files : sizeof rules;
    const long set = syscall(__NR_landlock_create_ruleset, &rules, size, 0);
    if (set < 0) return;
    syscall(__NR_landlock_restrict_self, set, 0);
    close(static_cast<int>(set));
}

void denyCalls() {
#if !defined(__SANITIZE_ADDRESS__)  // which opens pipes
    limit(RLIMIT_NOFILE, 0);
#endif
    prctl(PR_SET_NO_NEW_PRIVS, 1, 0, 0, 0);
    applyFilter();
}

void allowSeconds(int seconds) {
    rusage used{};
    getrusage(RUSAGE_SELF, &used);
    rlimit time{};
    getrlimit(RLIMIT_CPU, &time);
    const auto spent = static_cast<rlim_t>(used.ru_utime.tv_sec + used.ru_stime.tv_sec + 1);
    time.rlim_cur = spent + static_cast<rlim_t>(seconds);
    setrlimit(RLIMIT_CPU, &time);
}

}  // namespace vell::confinement
