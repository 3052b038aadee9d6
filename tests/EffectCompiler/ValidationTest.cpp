#include "OS/Host/EffectCompiler/DriverLog.h"
#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <gtest/gtest.h>

using namespace EffectCompiler;

TEST(Validation, MapsDriverLogsToTheEffect)
{
    const struct
    {
        const char* log;
        const char* listing;
    } cases[] = {
        {"1:12(5): error: `x' undeclared\n", "b.fx(12) : error : `x' undeclared\n"},
        {"0:3(1): warning: unused\r\n0:4(1): error: y",
         "a.fx(3) : warning : unused\na.fx(4) : error : y\n"},
        {"1(7) : error C1008: undefined variable \"x\"",
         "b.fx(7) : error : C1008: undefined variable \"x\"\n"},
        {"0(7) : warning C7050: maybe", "a.fx(7) : warning : C7050: maybe\n"},
        {"ERROR: 1:7: 'x' : undeclared\n\nWARNING: 0:2: w",
         "b.fx(7) : error : 'x' : undeclared\na.fx(2) : warning : w\n"},
        {"ERROR: 2 compilation errors.", "a.fx(9) : error : ERROR: 2 compilation errors.\n"},
        {"7:1(1): error: in no file", "a.fx(9) : error : 7:1(1): error: in no file\n"},
        {"error: linking\n  \n", "a.fx(9) : error : error: linking\n"},
        {"99999999999:1: x", "a.fx(9) : error : 99999999999:1: x\n"},
        {"", ""},
    };
    for (const auto& each : cases) {
        Messages messages;
        messages.addFile("a.fx");
        messages.addFile("b.fx");
        addDriverLog(each.log, {0, 9}, messages);
        EXPECT_EQ(messages.listing(), each.listing) << each.log;
    }
}
