#pragma once

/// Marks what a client of the shared library may link against. Everything else is hidden.
#define OS_API __attribute__((visibility("default")))
