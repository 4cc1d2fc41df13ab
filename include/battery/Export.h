// Marks what the shared library norv-battery-info exports, and what of an exported class it keeps to itself. (Windows
// exports all members of a class but those that are templates.)
//
// NORV_BATTERY_BUILD    is set while the library itself is compiled.
// NORV_BATTERY_STATIC   is set by code that may be linked against the library's objects instead of the shared library.
#pragma once

#ifdef _WIN32
#define NORV_BATTERY_HIDDEN
#ifdef NORV_BATTERY_BUILD
#define NORV_BATTERY_API __declspec(dllexport)
#elif defined(NORV_BATTERY_STATIC)
#define NORV_BATTERY_API
#else
#define NORV_BATTERY_API __declspec(dllimport)
#endif
#else
#define NORV_BATTERY_API __attribute__((visibility("default")))
#define NORV_BATTERY_HIDDEN __attribute__((visibility("hidden")))
#endif
