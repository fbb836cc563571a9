#pragma once

/// KELINS_API marks what the library exports.
///
/// Users of KelInsInfra.dll need nothing; users of the static library define KELINS_STATIC (the CMake target
/// KelInsInfra::KelInsInfraStatic does it for them). KELINS_BUILDING is defined only while the library itself is built.
///
/// KELINS_API_INLINE marks what is defined in a header: exported with the rest, and compiled by each user for himself.
#if defined(_WIN32) && !defined(KELINS_STATIC)
#if defined(KELINS_BUILDING)
#define KELINS_API __declspec(dllexport)
#define KELINS_API_INLINE __declspec(dllexport)
#else
#define KELINS_API __declspec(dllimport)
#define KELINS_API_INLINE
#endif
#else
#define KELINS_API
#define KELINS_API_INLINE
#endif
