#ifndef HOST_PROCESS_THREAD_SAFETY_H
#define HOST_PROCESS_THREAD_SAFETY_H

// Annotations that clang checks with -Wthread-safety. They say which mutex guards a variable, and
// which mutex a caller must hold.
#if defined(__clang__)
#define HOST_THREAD_SAFETY(attribute) __attribute__((attribute))
#else
#define HOST_THREAD_SAFETY(attribute)
#endif

#define HOST_MUTEX HOST_THREAD_SAFETY(capability("mutex"))
#define HOST_SCOPED_LOCK HOST_THREAD_SAFETY(scoped_lockable)
#define HOST_GUARDED_BY(mutex) HOST_THREAD_SAFETY(guarded_by(mutex))
#define HOST_REQUIRES(mutex) HOST_THREAD_SAFETY(requires_capability(mutex))
#define HOST_ACQUIRES(mutex) HOST_THREAD_SAFETY(acquire_capability(mutex))
#define HOST_RELEASES() HOST_THREAD_SAFETY(release_capability())
#define HOST_NOT_CHECKED HOST_THREAD_SAFETY(no_thread_safety_analysis)

#endif
