#pragma once

// The one export macro. Everything not marked stays inside the shared library.
#if defined(_WIN32)
#if defined(TVMATH_BUILDING)
#define TVMATH_API __declspec(dllexport)
#else
#define TVMATH_API __declspec(dllimport)
#endif
#else
#define TVMATH_API __attribute__((visibility("default")))
#endif
