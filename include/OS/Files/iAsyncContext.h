#pragma once

#include <OS/Core/iObject.h>

/// What an asynchronous transfer would report to. Never made: those transfers are not supported.
class OS_API iAsyncContext : public iObject
{
};
