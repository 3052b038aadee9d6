#include <OS/Core/TqResult.h>

#include "OS/Mac/Core/Assertion.h"

TqResult OStoTqErr(int status)
{
    if (status == 0)
        return 1;
    OSInternal::printLine("result %d\n", status);
    OSInternal::reportAssertion("false", "OS/Mac/MIDI line 27");
    return 0;
}
