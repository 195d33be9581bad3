#pragma once

#include <QMutex>

#if defined(__SANITIZE_THREAD__)
#include <sanitizer/tsan_interface.h>
#endif

/// Holds a mutex for its own lifetime. The packaged Qt is not built for the thread sanitizer, which
/// would take every lock for a race; the annotations tell it what a lock orders, so that real races
/// stand out.
class ScopedLock {
public:
    explicit ScopedLock(QMutex& mutex)
        : m_mutex(mutex)
    {
#if defined(__SANITIZE_THREAD__)
        __tsan_mutex_pre_lock(&m_mutex, __tsan_mutex_linker_init);
#endif
        m_mutex.lock();
#if defined(__SANITIZE_THREAD__)
        __tsan_mutex_post_lock(&m_mutex, __tsan_mutex_linker_init, 0);
#endif
    }

    ~ScopedLock()
    {
#if defined(__SANITIZE_THREAD__)
        __tsan_mutex_pre_unlock(&m_mutex, __tsan_mutex_linker_init);
#endif
        m_mutex.unlock();
#if defined(__SANITIZE_THREAD__)
        __tsan_mutex_post_unlock(&m_mutex, __tsan_mutex_linker_init);
#endif
    }

    ScopedLock(const ScopedLock&) = delete;
    ScopedLock& operator=(const ScopedLock&) = delete;

private:
    QMutex& m_mutex;
};
