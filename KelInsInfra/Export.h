#pragma once

/// KELINS_API marks what the library exports.
///
/// Users of KelInsInfra.dll need nothing; users of the static library define KELINS_STATIC (the CMake target
/// KelInsInfra::KelInsInfraStatic does it for them). KELINS_BUILDING is defined only while the library itself is built.
#if defined(_WIN32) && !defined(KELINS_STATIC)
#if defined(KELINS_BUILDING)
#define KELINS_API __declspec(dllexport)
#else
#define KELINS_API __declspec(dllimport)
#endif
#else
#define KELINS_API
#endif
