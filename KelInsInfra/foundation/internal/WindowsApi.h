#pragma once

// The only way to <windows.h>, for .cpp files alone: small, without the min and max macros.

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#ifndef NOMINMAX
#define NOMINMAX
#endif
#include <windows.h>
