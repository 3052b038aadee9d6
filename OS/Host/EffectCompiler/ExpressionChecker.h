#pragma once

#include "OS/Host/EffectCompiler/Declarations.h"
#include "OS/Host/EffectCompiler/Intrinsics.h"
#include "OS/Host/EffectCompiler/Messages.h"
#include "OS/Host/EffectCompiler/Scopes.h"
#include "OS/Host/EffectCompiler/Syntax.h"

#include <string>
#include <string_view>
#include <unordered_set>

namespace EffectCompiler {

/// Gives every expression its type, and writes each implicit conversion into the tree as a cast, so
/// that whoever reads the tree afterwards need not know the rules. Only arguments for out and inout
/// parameters stay as they are: they are converted in both directions.
class ExpressionChecker
{
public:
    ExpressionChecker(SyntaxTree& tree, const Declarations& declarations, Messages& messages)
        : tree_(tree), declarations_(declarations), messages_(messages)
    {
    }

    Scopes& scopes() { return scopes_; }
    /// Whose body the expressions are in; null at file scope.
    void setFunction(Function* function) { function_ = function; }
    /// A global may not be used in what comes before its declaration at file scope.
    void hide(const Variable* global) { hidden_.insert(global); }
    void show(const Variable* global) { hidden_.erase(global); }

    void check(Expression& expression);
    /// Checks, and makes it the type that is wanted.
    /// @param where for the message: "in assignment"
    void checkAs(Expression*& expression, const Type& type, std::string_view where);
    /// Checks, and makes it a bool. @param what needs it: "if"
    void checkCondition(Expression*& expression, std::string_view what);
    /// Checks an initialiser, which may be a list.
    void checkInitialiser(Expression*& expression, const Type& type);

private:
    // Names, operators: ExpressionChecker.cpp.
    void checkName(Expression& expression);
    void becomeField(Expression& expression);
    void checkUnary(Expression& expression);
    void checkStep(Expression& expression);
    void checkBinary(Expression& expression);
    void checkArithmetic(Expression& expression);
    void checkComparison(Expression& expression);
    void checkLogic(Expression& expression);
    void checkBits(Expression& expression);
    void checkAssign(Expression& expression);
    void checkConditional(Expression& expression);
    void checkIndex(Expression& expression);

    // What stands behind a point: MemberChecker.cpp.
    void checkMember(Expression& expression);
    bool checkState(Expression& expression);
    void checkSwizzle(Expression& expression);
    void checkMatrixElements(Expression& expression);

    // Calls, constructors, casts: CallChecker.cpp.
    void checkCall(Expression& expression);
    void checkMethodCall(Expression& expression);
    void checkConstructor(Expression& expression);
    void checkCast(Expression& expression);
    bool checkOperands(Expression& expression);
    void callFunction(Expression& expression, const std::vector<Function*>& overloads,
                      std::size_t firstArgument);
    void passArguments(Expression& expression, const Function& function, std::size_t firstArgument);
    /// @return whether one took it
    bool callIntrinsic(Expression& expression, std::string_view name, int width);
    void callMul(Expression& expression);
    void callTranspose(Expression& expression);
    void narrowResult(Expression& expression, int width);
    void passOut(Expression& argument, const Type& parameter, bool isRead,
                 const std::string& where);
    std::string argumentTypes(const Expression& expression, std::size_t firstArgument) const;

    // Initialisers: InitialiserChecker.cpp.
    void fillFromList(Expression*& expression, const Type& type);
    void fillMembers(Expression& list, const Type& type);
    void flatten(Expression& list, std::vector<Expression*>& leaves);
    Expression* takeLeaves(const Type& type, std::vector<Expression*>& leaves, std::size_t& next,
                           SourcePlace place);

    void convert(Expression*& expression, const Type& type, std::string_view where);
    /// Whether it may be written to; says why not. Marks what it belongs to as written.
    bool write(Expression& target);
    Expression* make(Expression::Kind kind, SourcePlace place);
    Expression* cast(Expression* operand, const Type& type);
    void fail(Expression& expression, const std::string& text);

    SyntaxTree& tree_;
    const Declarations& declarations_;
    Messages& messages_;
    Scopes scopes_;
    Function* function_ = nullptr;
    std::unordered_set<const Variable*> hidden_;
};

} // namespace EffectCompiler
