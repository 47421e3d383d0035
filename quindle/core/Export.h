#pragma once

/// QUINDLE_API marks what a host may call; everything else in the library is hidden. QUINDLE_PRIVATE hides
/// what does not leave the library of a class that is marked as a whole: its private parts and its templates.
/// A library that is linked statically (QUINDLE_STATIC, which its package sets for the host too) exports
/// nothing, so that a plugin that holds it does not offer it to others.
#if defined(QUINDLE_STATIC)
#define QUINDLE_API
#define QUINDLE_PRIVATE
#elif defined(_WIN32)
#if defined(QUINDLE_BUILDING)
#define QUINDLE_API __declspec(dllexport)
#else
#define QUINDLE_API __declspec(dllimport)
#endif
#define QUINDLE_PRIVATE
#else
#define QUINDLE_API __attribute__((visibility("default")))
#define QUINDLE_PRIVATE __attribute__((visibility("hidden")))
#endif
