#pragma once

/// What clang's thread-safety analysis reads; nothing to other compilers.
#if defined(__clang__)
#define KA_ATTRIBUTE(x) __attribute__((x))
#else
#define KA_ATTRIBUTE(x)
#endif

#define KA_CAPABILITY(x) KA_ATTRIBUTE(capability(x))
#define KA_SCOPED_CAPABILITY KA_ATTRIBUTE(scoped_lockable)
#define KA_GUARDED_BY(x) KA_ATTRIBUTE(guarded_by(x))
#define KA_REQUIRES(...) KA_ATTRIBUTE(requires_capability(__VA_ARGS__))
#define KA_EXCLUDES(...) KA_ATTRIBUTE(locks_excluded(__VA_ARGS__))
#define KA_ACQUIRE(...) KA_ATTRIBUTE(acquire_capability(__VA_ARGS__))
#define KA_RELEASE(...) KA_ATTRIBUTE(release_capability(__VA_ARGS__))
#define KA_TRY_ACQUIRE(...) KA_ATTRIBUTE(try_acquire_capability(__VA_ARGS__))
