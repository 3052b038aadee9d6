#include "OS/Host/EffectCompiler/DriverLog.h"
#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <gtest/gtest.h>

using namespace EffectCompiler;

namespace {

/// A driver that says what it is told to say.
class Driver final : public iProgramBuilder
{
public:
    explicit Driver(std::string log = {}) : log_(std::move(log)) {}
    int glslVersion() const override { return 130; }
    bool build(const ProgramText& text, std::string& log) override
    {
        ++builds_;
        EXPECT_NE(text.fragment, "");
        log = log_;
        return log_.empty();
    }
    int builds() const { return builds_; }

private:
    std::string log_;
    int builds_ = 0;
};

constexpr char kEffect[] = R"(float4 f(float2 uv : TEXCOORD0) : COLOR { return uv.xyxy; }
technique Broken { pass { PixelShader = compile glslf missing(); } }
technique Old { pass { PixelShader = asm { ps_2_0 }; } }
technique Geometry { pass { PixelShader = compile glslf f(); GeometryProgram = compile glslg f(); } }
technique Array { pass { PixelShader = (f); } }
technique Good { pass { PixelShader = compile glslf f(); } pass { PixelShader = compile glslf f(); } }
)";

} // namespace

TEST(Validation, JudgesEachTechniqueByItself)
{
    Context context;
    const auto effect = context.createFromText(kEffect, "e.fx", {});
    ASSERT_TRUE(effect) << context.listing();
    Driver driver;
    std::string listing;
    EXPECT_FALSE(effect->validate(0, driver, listing));
    EXPECT_EQ(listing, "e.fx(2) : error : undefined function 'missing'\n");
    EXPECT_FALSE(effect->validate(1, driver, listing));
    EXPECT_EQ(listing, "e.fx(3) : error : assembler programs are not supported\n");
    EXPECT_FALSE(effect->validate(2, driver, listing));
    EXPECT_EQ(listing, "e.fx(4) : error : GeometryProgram is not supported\n");
    EXPECT_FALSE(effect->validate(3, driver, listing));
    EXPECT_EQ(listing, "e.fx(5) : error : PixelShader must be compiled, or null\n");
    EXPECT_EQ(driver.builds(), 0);
    EXPECT_TRUE(effect->validate(4, driver, listing));
    EXPECT_EQ(listing, "");
    EXPECT_EQ(driver.builds(), 2);
    EXPECT_FALSE(effect->validate(5, driver, listing));

    Driver refusing("0:1(38): error: no\n");
    EXPECT_FALSE(effect->validate(4, refusing, listing));
    EXPECT_EQ(listing, "e.fx(1) : error : no\n");
    Driver silent("\n");
    EXPECT_FALSE(effect->validate(4, silent, listing));
    EXPECT_EQ(listing, "e.fx(6) : error : the driver refuses the program\n");

    EXPECT_TRUE(effect->translate(4, 1, 130, listing));
    EXPECT_EQ(listing, "");
    EXPECT_FALSE(effect->translate(4, 2, 130, listing));
    EXPECT_FALSE(effect->translate(9, 0, 130, listing));
}

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
