#include "OS/Host/EffectCompiler/ConstantGlobals.h"

#include "OS/Host/EffectCompiler/GlslValue.h"
#include "OS/Host/EffectCompiler/Intrinsics.h"
#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>

namespace EffectCompiler {
namespace {

using Kind = Expression::Kind;

bool isOfVectors(const Expression& expression)
{
    return componentsOf(expression.operands[0]->type) > 1;
}

bool isConstantCall(const Expression& call)
{
    if (!call.intrinsic)
        return false;
    const std::string_view glsl = call.intrinsic->glsl;
    return glsl[0] != '@' && glsl[0] != '!' && !call.intrinsic->isForFragments &&
           !call.intrinsic->name.starts_with("tex") &&
           call.intrinsic->glsl120.find('@') == std::string_view::npos;
}

/// Whether what takes matrices apart, or puts them together, names what it takes: its text may
/// stand there several times.
bool isShort(const Expression& expression)
{
    return std::all_of(expression.operands.begin(), expression.operands.end(),
                       [&](const Expression* operand) {
                           const bool isMatrices =
                               isNumeric(operand->type) &&
                               (isGlslMatrix(operand->type) || isGlslMatrix(expression.type));
                           return !isMatrices || operand->operands.empty() ||
                                  expression.kind == Kind::eConstructor;
                       }) &&
           (expression.kind != Kind::eConstructor ||
            std::none_of(expression.operands.begin(), expression.operands.end(),
                         [](const Expression* operand) {
                             return isGlslMatrix(operand->type) && !operand->operands.empty();
                         }));
}

/// Whether it is written without helpers, effects and variables.
bool isConstant(const Expression& expression)
{
    bool isItself = true;
    switch (expression.kind) {
    case Kind::eNumber:
    case Kind::eBool:
    case Kind::eList:
        break;
    case Kind::eConstructor:
    case Kind::eMember:
        isItself = isShort(expression);
        break;
    case Kind::eIndex:
        isItself = expression.operands[0]->type.dims.size() < 2;
        break;
    case Kind::eName:
        isItself = expression.variable && expression.variable->hasConstantValue &&
                   !expression.variable->isWritten;
        break;
    case Kind::eUnary:
        isItself = expression.text.size() == 1;
        break;
    case Kind::eBinary:
        isItself =
            expression.text != "%" && expression.text != "," &&
            !((expression.text == "&&" || expression.text == "||") && isOfVectors(expression));
        break;
    case Kind::eConditional:
        isItself = !isOfVectors(expression);
        break;
    case Kind::eCast:
        isItself = isNumeric(expression.type) ? isShort(expression)
                                              : expression.operands[0]->kind == Kind::eNumber;
        break;
    case Kind::eCall:
        isItself = isConstantCall(expression);
        break;
    default:
        isItself = false;
        break;
    }
    return isItself && std::all_of(expression.operands.begin(), expression.operands.end(),
                                   [](const Expression* operand) { return isConstant(*operand); });
}

} // namespace

void markConstantGlobals(SyntaxTree& tree)
{
    for (Variable* global : tree.globals) {
        const bool isInitialised = !global->isEffectParameter() && global->initialiser;
        global->hasConstantValue = isInitialised && isConstant(*global->initialiser);
    }
}

} // namespace EffectCompiler
