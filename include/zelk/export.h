/// \file
/// Visibility and linkage of the public interface: the one header that knows how a compiler spells
/// them.

#ifndef ZELK_EXPORT_H
#define ZELK_EXPORT_H

/* A program that compiles the library's sources into itself defines ZELK_STATIC; the library's own
 * build defines ZELK_BUILD. A host defines neither. The same holds for the library of logs with
 * ZELK_LOGS_STATIC and ZELK_LOGS_BUILD. */
#if defined(ZELK_STATIC)
#define ZELK_API
#elif defined(_WIN32)
#if defined(ZELK_BUILD)
#define ZELK_API __declspec(dllexport)
#else
#define ZELK_API __declspec(dllimport)
#endif
#else
#define ZELK_API __attribute__((visibility("default")))
#endif

#if defined(ZELK_LOGS_STATIC)
#define ZELK_LOGS_API
#elif defined(_WIN32)
#if defined(ZELK_LOGS_BUILD)
#define ZELK_LOGS_API __declspec(dllexport)
#else
#define ZELK_LOGS_API __declspec(dllimport)
#endif
#else
#define ZELK_LOGS_API __attribute__((visibility("default")))
#endif

/* In front of the functions that a converter module exports (module.h). */
#if defined(_WIN32)
#define ZELK_MODULE_EXPORT __declspec(dllexport)
#else
#define ZELK_MODULE_EXPORT __attribute__((visibility("default")))
#endif

#ifdef __cplusplus
#define ZELK_EXTERN_C_BEGIN extern "C" {
#define ZELK_EXTERN_C_END }
#else
#define ZELK_EXTERN_C_BEGIN
#define ZELK_EXTERN_C_END
#endif

#endif
