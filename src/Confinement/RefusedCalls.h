// SPDX-License-Identifier: MIT
#pragma once

#include <sys/syscall.h>

/// The system calls that are refused whatever their arguments are. Those from 424 on have the same
/// number everywhere, and headers may not know them yet.
constexpr long refusedCalls[] = {
    // Starting programs, and looking into others.
    SYS_execve,
    SYS_execveat,
    SYS_ptrace,
    SYS_process_vm_readv,
    SYS_process_vm_writev,
    SYS_kcmp,
    SYS_move_pages,
    SYS_migrate_pages,
    438, // pidfd_getfd
    440, // process_madvise
    448, // process_mrelease

    // What is mounted where, and namespaces.
    SYS_mount,
    SYS_umount2,
    SYS_pivot_root,
    SYS_chroot,
    SYS_unshare,
    SYS_setns,
    428, // open_tree
    429, // move_mount
    430, // fsopen
    431, // fsconfig
    432, // fsmount
    433, // fspick
    442, // mount_setattr
    467, // open_tree_attr

    // Parts of the kernel that are of no use here, and that have helped others out.
    SYS_add_key,
    SYS_request_key,
    SYS_keyctl,
    SYS_bpf,
    SYS_perf_event_open,
    SYS_userfaultfd,
    SYS_fanotify_init,
    SYS_open_by_handle_at,
    SYS_mq_open,
    SYS_mq_unlink,
    425, // io_uring_setup
    426, // io_uring_enter
    427, // io_uring_register

    // The computer as a whole, which root may change.
    SYS_reboot,
    SYS_kexec_load,
    SYS_kexec_file_load,
    SYS_init_module,
    SYS_finit_module,
    SYS_delete_module,
    SYS_swapon,
    SYS_swapoff,
    SYS_quotactl,
    SYS_acct,
    SYS_syslog,
    SYS_vhangup,
    SYS_sethostname,
    SYS_setdomainname,
    SYS_settimeofday,
    SYS_clock_settime,
    SYS_adjtimex,
    SYS_clock_adjtime,
    443, // quotactl_fd

    // Files by their path: modes, owners, attributes, times, of which Landlock knows nothing.
    SYS_fchmodat,
    SYS_fchownat,
    SYS_setxattr,
    SYS_lsetxattr,
    SYS_removexattr,
    SYS_lremovexattr,
    452, // fchmodat2
    463, // setxattrat
    466, // removexattrat
    469, // file_setattr
#if defined(__x86_64__)
    SYS_chmod,
    SYS_chown,
    SYS_lchown,
    SYS_iopl,
    SYS_ioperm,
    SYS_modify_ldt,
    SYS_uselib,
    SYS_utime,
    SYS_utimes,
    SYS_futimesat,
#endif
};
