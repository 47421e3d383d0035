#pragma once

/// Marks what the platform library exports. Templates and their specialisations carry it too, so that a
/// value's type is the same type in every library that is loaded. Linked statically
/// (QUINDLE_PLATFORM_STATIC), it exports nothing.
#if defined(_WIN32) || defined(QUINDLE_PLATFORM_STATIC)
#define QUINDLE_PLATFORM_API
#else
#define QUINDLE_PLATFORM_API __attribute__((visibility("default")))
#endif
