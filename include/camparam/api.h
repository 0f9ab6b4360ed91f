/**
 * @file api.h
 * What every exported declaration is made with.
 *
 * The library calls functions of the host: platform functions, hooks, rows of its own modules,
 * handlers, filters and observers. None of them may throw a C++ exception into the library: it has
 * no tables to unwind by, and the process would be ended.
 */
#ifndef CAMPARAM_API_H
#define CAMPARAM_API_H

/** Marks what libcamparam.so and libcamparam_platform.so export; everything else is hidden. */
#define PARA_API __attribute__((visibility("default")))

#ifdef __cplusplus
#define PARA_BEGIN_DECLS extern "C" {
#define PARA_END_DECLS }
#else
#define PARA_BEGIN_DECLS
#define PARA_END_DECLS
#endif

#endif
