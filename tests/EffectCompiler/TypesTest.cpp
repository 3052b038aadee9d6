#include "OS/Host/EffectCompiler/Types.h"
#include "OS/Host/EffectCompiler/GlslNames.h"
#include "OS/Host/EffectCompiler/GlslValue.h"

#include <gtest/gtest.h>

using namespace EffectCompiler;

namespace {

using Scalar = Type::Scalar;

Type array(Type type, std::vector<int> dims)
{
    type.dims = std::move(dims);
    return type;
}

const Type kBool = scalarType(Scalar::eBool);
const Type kInt = scalarType(Scalar::eInt);
const Type kFloat = scalarType(Scalar::eFloat);
const Type kFloat1 = vectorType(Scalar::eFloat, 1);
const Type kInt3 = vectorType(Scalar::eInt, 3);
const Type kFloat2 = vectorType(Scalar::eFloat, 2);
const Type kFloat3 = vectorType(Scalar::eFloat, 3);
const Type kFloat4 = vectorType(Scalar::eFloat, 4);
const Type kRow = matrixType(Scalar::eFloat, 1, 3);
const Type kColumn = matrixType(Scalar::eFloat, 3, 1);
const Type kTwo = matrixType(Scalar::eFloat, 2, 2);
const Type kThree = matrixType(Scalar::eFloat, 3, 3);

} // namespace

TEST(Types, ConvertByItselfOrByACast)
{
    enum Way
    {
        eNever,
        eCast,
        eImplicit
    };
    const struct
    {
        Type from, to;
        Way way;
    } cases[] = {
        {kFloat, kInt, eImplicit},
        {kBool, kFloat3, eImplicit},
        {kFloat4, kFloat3, eImplicit},
        {kFloat3, kFloat4, eNever},
        {kFloat3, kFloat, eImplicit},
        {kFloat1, kFloat, eImplicit},
        {kFloat1, kFloat4, eImplicit},
        {kRow, kFloat3, eImplicit},
        {kFloat3, kColumn, eImplicit},
        {kRow, kColumn, eCast},
        {kTwo, kFloat4, eCast},
        {kFloat4, kTwo, eCast},
        {kThree, kTwo, eImplicit},
        {kTwo, kThree, eNever},
        {kThree, kFloat3, eNever},
        {kFloat, array(kFloat, {2}), eCast},
        {array(kFloat, {2}), kFloat2, eNever},
        {array(kFloat, {2}), array(kFloat1, {2}), eImplicit},
        {array(kFloat, {2}), array(kFloat, {3}), eNever},
        {array(kFloat, {2}), array(kInt, {2}), eNever},
        {scalarType(Scalar::eString), kFloat, eNever},
        {errorType(), kThree, eImplicit},
    };
    for (const auto& each : cases) {
        const std::string name = nameOf(each.from) + " to " + nameOf(each.to);
        EXPECT_EQ(converts(each.from, each.to), each.way == eImplicit) << name;
        EXPECT_EQ(casts(each.from, each.to), each.way != eNever) << name;
    }
}

TEST(Types, ACloserTypeCostsLess)
{
    const std::vector<Type> fromFloat3 = {kFloat3, kInt3, kFloat2, kFloat};
    for (std::size_t i = 1; i < fromFloat3.size(); ++i)
        EXPECT_LT(conversionCost(kFloat3, fromFloat3[i - 1]),
                  conversionCost(kFloat3, fromFloat3[i]))
            << nameOf(fromFloat3[i]);
    EXPECT_LT(conversionCost(kInt, kFloat), conversionCost(kFloat, kInt));
    EXPECT_LT(conversionCost(kInt, kFloat), conversionCost(kInt, kInt3));
}

TEST(Types, ArithmeticMeetsInTheMiddle)
{
    const struct
    {
        Type left, right;
        const char* common; ///< empty for none
    } cases[] = {{kBool, kBool, "int"},
                 {kInt, kFloat, "float"},
                 {kInt3, kFloat, "float3"},
                 {kFloat4, kInt3, "float3"},
                 {kFloat, kThree, "float3x3"},
                 {kThree, kTwo, "float2x2"},
                 {kThree, kFloat3, ""},
                 {kRow, kFloat3, "float3"},
                 {array(kFloat, {2}), kFloat, ""},
                 {errorType(), kInt, "unknown"}};
    for (const auto& each : cases) {
        for (const auto& common :
             {commonType(each.left, each.right), commonType(each.right, each.left)})
            EXPECT_EQ(common ? nameOf(*common) : "", each.common)
                << nameOf(each.left) << " and " << nameOf(each.right);
    }
}

TEST(GlslNames, KeepWhatGlslTakesAndNothingTwice)
{
    GlslNames names;
    const char* const cases[][2] = {
        {"colour", "colour"}, {"colour", "colour_1"}, {"mix", "mix_1"}, {"gl_x", "own_gl_x_1"},
        {"a__b", "a_b_1"},    {"a_", "a_"},           {"__", "x_1"},    {"fx_and", "own_fx_and_1"}};
    for (const auto& each : cases)
        EXPECT_EQ(names.global(each[0]), each[1]) << each[0];
    names.openScope();
    EXPECT_EQ(names.local("i"), "i");
    names.openScope();
    EXPECT_EQ(names.local("i"), "i_1");
    names.closeScope();
    names.closeScope();
    names.openScope();
    EXPECT_EQ(names.local("i"), "i") << "the scope that had it is closed";
    EXPECT_EQ(names.local("colour"), "colour_2");
    names.closeScope();
}

TEST(GlslValue, WritesNumbersThatReadBackAsTheyWere)
{
    const struct
    {
        double number;
        Scalar scalar;
        const char* text;
    } cases[] = {
        {0.1, Scalar::eFloat, "0.1"},       {3, Scalar::eFloat, "3.0"},
        {1e-30, Scalar::eFloat, "1e-30"},   {1e300, Scalar::eFloat, "3.4028235e+38"},
        {-0.5, Scalar::eFloat, "-0.5"},     {2147483648.0, Scalar::eInt, "(-2147483647 - 1)"},
        {4294967295.0, Scalar::eInt, "-1"}, {4294967295.0, Scalar::eUint, "4294967295u"},
        {1, Scalar::eBool, "true"}};
    for (const auto& each : cases)
        EXPECT_EQ(numberValue(each.number, each.scalar).text, each.text);
    EXPECT_EQ(bound(numberValue(-1, Scalar::eFloat), Binding::ePrimary), "(-1.0)");
}
