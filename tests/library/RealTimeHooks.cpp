// SPDX-License-Identifier: AGPL-3.0-only
#include "library/RealTimeHooks.h"

#include <cerrno>
#include <csignal>
#include <cstdlib>
#include <dlfcn.h>
#include <pthread.h>
#include <semaphore.h>
#include <stdexcept>
#include <sys/prctl.h>
#include <ucontext.h>

// The C library's own functions under the names by which it calls them itself.
// NOLINTBEGIN(bugprone-reserved-identifier)
extern "C"
{
    void* __libc_malloc (std::size_t size);
    void* __libc_calloc (std::size_t count, std::size_t size);
    void* __libc_realloc (void* memory, std::size_t size);
    void* __libc_memalign (std::size_t alignment, std::size_t size);
    void __libc_free (void* memory);
}
// NOLINTEND(bugprone-reserved-identifier)

namespace
{
constexpr char allow = 0; // SYSCALL_DISPATCH_FILTER_ALLOW
constexpr char block = 1; // SYSCALL_DISPATCH_FILTER_BLOCK
constexpr int setSyscallUserDispatch = 59;

thread_local bool counting = false;
thread_local RealTimeScope::Counts counts;
thread_local volatile char dispatchSelector = allow;
thread_local std::size_t refusedSize = 0;

void noteAllocation()
{
    if (counting)
        ++counts.allocations;
}

/** Counts a lock and calls the C library's function of that name. The pointer is looked up once per name. */
template <typename... Arguments>
int countedLock (int (*&original) (Arguments...), const char* name, Arguments... arguments)
{
    if (counting)
        ++counts.locks;

    if (original == nullptr)
        original = reinterpret_cast<int (*) (Arguments...)> (dlsym (RTLD_NEXT, name));

    return original (arguments...);
}

int (*mutexLock) (pthread_mutex_t*) = nullptr;
int (*mutexTryLock) (pthread_mutex_t*) = nullptr;
int (*readLock) (pthread_rwlock_t*) = nullptr;
int (*writeLock) (pthread_rwlock_t*) = nullptr;
int (*conditionWait) (pthread_cond_t*, pthread_mutex_t*) = nullptr;
int (*conditionSignal) (pthread_cond_t*) = nullptr;
int (*conditionBroadcast) (pthread_cond_t*) = nullptr;
int (*semaphoreWait) (sem_t*) = nullptr;
int (*semaphorePost) (sem_t*) = nullptr;

/** Notes the system call and has it made once more, unhindered this time. */
void onSystemCall (int, siginfo_t* info, void* context)
{
    dispatchSelector = allow;
    ++counts.systemCalls;
    counts.firstSystemCall = info->si_syscall;
    auto& registers = static_cast<ucontext_t*> (context)->uc_mcontext.gregs;
    constexpr int lengthOfSyscallInstruction = 2;
    registers[REG_RIP] -= lengthOfSyscallInstruction;
}
} // namespace

RealTimeScope::RealTimeScope()
{
    struct sigaction action
    {
    };
    action.sa_sigaction = onSystemCall;
    action.sa_flags = SA_SIGINFO;
    sigaction (SIGSYS, &action, nullptr);

    if (prctl (setSyscallUserDispatch, 1, 0, 0, &dispatchSelector) != 0)
        throw std::runtime_error ("this kernel cannot dispatch system calls to the program (Linux 5.11 can)");

    counts = {};
    counting = true;
    dispatchSelector = block;
}

RealTimeScope::Counts RealTimeScope::stop()
{
    dispatchSelector = allow;
    counting = false;
    return counts;
}

RealTimeScope::~RealTimeScope()
{
    stop();
    prctl (setSyscallUserDispatch, 0, 0, 0, 0);
}

ScopedRefusal::ScopedRefusal (std::size_t size)
{
    refusedSize = size;
}

ScopedRefusal::~ScopedRefusal()
{
    refusedSize = 0;
}

extern "C"
{
    __attribute__ ((visibility ("default"))) void* malloc (std::size_t size)
    {
        noteAllocation();
        return size != 0 && size == refusedSize ? nullptr : __libc_malloc (size);
    }

    __attribute__ ((visibility ("default"))) void* calloc (std::size_t count, std::size_t size)
    {
        noteAllocation();
        return __libc_calloc (count, size);
    }

    __attribute__ ((visibility ("default"))) void* realloc (void* memory, std::size_t size)
    {
        noteAllocation();
        return __libc_realloc (memory, size);
    }

    __attribute__ ((visibility ("default"))) void* memalign (std::size_t alignment, std::size_t size)
    {
        noteAllocation();
        return __libc_memalign (alignment, size);
    }

    __attribute__ ((visibility ("default"))) void* aligned_alloc (std::size_t alignment, std::size_t size)
    {
        noteAllocation();
        return __libc_memalign (alignment, size);
    }

    __attribute__ ((visibility ("default"))) int posix_memalign (void** memory, std::size_t alignment, std::size_t size)
    {
        noteAllocation();
        *memory = __libc_memalign (alignment, size);
        return *memory != nullptr ? 0 : ENOMEM;
    }

    __attribute__ ((visibility ("default"))) void free (void* memory)
    {
        if (memory != nullptr) // releasing nothing is no work
            noteAllocation();

        __libc_free (memory);
    }

    __attribute__ ((visibility ("default"))) int pthread_mutex_lock (pthread_mutex_t* mutex) noexcept
    {
        return countedLock (mutexLock, "pthread_mutex_lock", mutex);
    }

    __attribute__ ((visibility ("default"))) int pthread_mutex_trylock (pthread_mutex_t* mutex) noexcept
    {
        return countedLock (mutexTryLock, "pthread_mutex_trylock", mutex);
    }

    __attribute__ ((visibility ("default"))) int pthread_rwlock_rdlock (pthread_rwlock_t* lock) noexcept
    {
        return countedLock (readLock, "pthread_rwlock_rdlock", lock);
    }

    __attribute__ ((visibility ("default"))) int pthread_rwlock_wrlock (pthread_rwlock_t* lock) noexcept
    {
        return countedLock (writeLock, "pthread_rwlock_wrlock", lock);
    }

    __attribute__ ((visibility ("default"))) int pthread_cond_wait (pthread_cond_t* condition, pthread_mutex_t* mutex)
    {
        return countedLock (conditionWait, "pthread_cond_wait", condition, mutex);
    }

    __attribute__ ((visibility ("default"))) int pthread_cond_signal (pthread_cond_t* condition) noexcept
    {
        return countedLock (conditionSignal, "pthread_cond_signal", condition);
    }

    __attribute__ ((visibility ("default"))) int pthread_cond_broadcast (pthread_cond_t* condition) noexcept
    {
        return countedLock (conditionBroadcast, "pthread_cond_broadcast", condition);
    }

    __attribute__ ((visibility ("default"))) int sem_wait (sem_t* semaphore)
    {
        return countedLock (semaphoreWait, "sem_wait", semaphore);
    }

    __attribute__ ((visibility ("default"))) int sem_post (sem_t* semaphore) noexcept
    {
        return countedLock (semaphorePost, "sem_post", semaphore);
    }
}
