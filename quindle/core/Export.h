#pragma once

/// Marks what a host may call. Everything else in the library is hidden.
#if defined(_WIN32)
#if defined(QUINDLE_BUILDING)
#define QUINDLE_API __declspec(dllexport)
#else
#define QUINDLE_API __declspec(dllimport)
#endif
#else
#define QUINDLE_API __attribute__((visibility("default")))
#endif
