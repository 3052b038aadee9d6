#pragma once

#include "OS/Host/EffectCompiler/ExpressionChecker.h"

namespace EffectCompiler {

/// Checks the body of a function.
class StatementChecker
{
public:
    StatementChecker(ExpressionChecker& expressions, Messages& messages)
        : expressions_(expressions), messages_(messages)
    {
    }

    void checkFunction(Function& function);

private:
    void check(Statement& statement);
    void checkInScope(Statement* statement);
    void declare(Variable& variable);
    void checkFor(Statement& statement);
    void checkLoop(Statement& statement);
    void checkSwitch(Statement& statement);
    void checkCase(Statement& statement);
    void checkReturn(Statement& statement);
    void checkEnd(const Function& function);

    ExpressionChecker& expressions_;
    Messages& messages_;
    const Function* function_ = nullptr;
    int loops_ = 0;
    int switches_ = 0;
    bool isInSwitchBody_ = false; ///< right below its braces, where "case" may stand
    bool hasReturn_ = false;
};

} // namespace EffectCompiler
