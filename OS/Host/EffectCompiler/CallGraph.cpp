#include "OS/Host/EffectCompiler/CallGraph.h"

#include "OS/Host/EffectCompiler/Declarations.h"
#include "OS/Host/EffectCompiler/Intrinsics.h"
#include "OS/Host/EffectCompiler/Walk.h"

#include <algorithm>
#include <unordered_map>
#include <unordered_set>

namespace EffectCompiler {
namespace {

using Kind = Expression::Kind;

bool isWrite(const Expression& expression)
{
    return expression.kind == Kind::eAssign || expression.kind == Kind::ePostfix ||
           (expression.kind == Kind::eUnary && expression.text.size() == 2);
}

bool hasOut(const Function& function)
{
    return std::any_of(function.parameters.begin(), function.parameters.end(),
                       [](const Variable* p) { return p->direction != Variable::Direction::eIn; });
}

bool discards(const Statement* statement)
{
    if (!statement)
        return false;
    return statement->kind == Statement::Kind::eDiscard || discards(statement->body) ||
           std::any_of(statement->statements.begin(), statement->statements.end(), discards);
}

/// Of the language's functions: whether it gives something out, or may end the program.
bool hasEffects(const Intrinsic& intrinsic)
{
    return intrinsic.signature.find('*') != std::string_view::npos || intrinsic.name == "clip";
}

class Completion
{
public:
    Completion(SyntaxTree& tree, Messages& messages) : tree_(tree), messages_(messages) {}

    void run()
    {
        for (Function* function : tree_.functions) {
            if (function->body)
                collect(*function);
        }
        findRecursion();
        spread();
        for (Variable& variable : tree_.variables) {
            if (variable.isParameter)
                walk(variable.initialiser, [this](Expression& expression) { settle(expression); });
        }
        for (Function* function : tree_.functions)
            walk(function->body, [this](Expression& expression) { settle(expression); });
        for (Variable* variable : tree_.globals)
            walk(variable->initialiser, [this](Expression& expression) { settle(expression); });
    }

private:
    struct Call
    {
        const Function* target;
        const Variable* object; ///< of methods; null where it is no variable
    };

    void collect(Function& function)
    {
        std::unordered_set<const Function*> seen;
        function.hasEffects = discards(function.body);
        walk(function.body, [&](Expression& expression) {
            if (isWrite(expression))
                addWrite(function, *expression.operands[0]);
            if (expression.intrinsic && expression.intrinsic->name == "clip")
                function.hasEffects = true;
            if (!expression.function)
                return;
            addOutArguments(function, expression);
            const bool isMethod = expression.kind == Kind::eMethodCall;
            const Variable* object = isMethod ? rootOf(*expression.operands[0]).variable : nullptr;
            for (const Function* target : targets(*expression.function)) {
                calls_[&function].push_back({target, object});
                if (seen.insert(target).second)
                    function.callees.push_back(target);
            }
        });
    }

    void addWrite(Function& function, const Expression& target)
    {
        const Variable* variable = rootOf(target).variable;
        function.hasEffects = function.hasEffects || (variable && variable->isGlobal);
    }

    void addOutArguments(Function& function, const Expression& call)
    {
        const std::size_t first = call.kind == Kind::eMethodCall ? 1 : 0;
        const auto& parameters = call.function->parameters;
        for (std::size_t i = 0; i < parameters.size(); ++i) {
            if (parameters[i]->direction != Variable::Direction::eIn)
                addWrite(function, *call.operands[first + i]);
        }
    }

    const std::vector<const Function*>& targets(const Function& function)
    {
        const auto found = targets_.find(&function);
        if (found != targets_.end())
            return found->second;
        return targets_[&function] = targetsOf(tree_, function);
    }

    /// Effects go from the called to the caller, until nothing changes.
    void spread()
    {
        for (bool hasChanged = true; hasChanged;) {
            hasChanged = false;
            for (Function* function : tree_.functions) {
                for (const Call& call : calls_[function])
                    hasChanged = spread(*function, call) || hasChanged;
            }
        }
    }

    static bool spread(Function& function, const Call& call)
    {
        bool hasChanged = false;
        if (call.target->hasEffects && !function.hasEffects)
            hasChanged = function.hasEffects = true;
        if (!call.target->self || !call.target->self->isWritten || !call.object)
            return hasChanged;
        if (!call.object->isWritten && !call.object->isConst)
            hasChanged = const_cast<Variable*>(call.object)->isWritten = true;
        if (call.object->isGlobal && !function.hasEffects)
            hasChanged = function.hasEffects = true;
        return hasChanged;
    }

    void settle(Expression& expression)
    {
        expression.hasEffects =
            isWrite(expression) ||
            std::any_of(expression.operands.begin(), expression.operands.end(),
                        [](const Expression* operand) { return operand->hasEffects; });
        if (expression.intrinsic && hasEffects(*expression.intrinsic))
            expression.hasEffects = true;
        if (!expression.function)
            return;
        for (const Function* target : targets(*expression.function)) {
            const bool writesObject = target->self && target->self->isWritten;
            if (target->hasEffects || hasOut(*target) || writesObject)
                expression.hasEffects = true;
        }
    }

    void findRecursion()
    {
        std::unordered_map<const Function*, State> states;
        for (const Function* function : tree_.functions)
            visit(*function, states);
    }

    enum class State
    {
        eNew,
        eOpen,
        eDone
    };

    /// Depth first, with a stack of its own: chains of calls may be long.
    void visit(const Function& first, std::unordered_map<const Function*, State>& states)
    {
        struct Step
        {
            const Function* function;
            std::size_t next;
        };
        if (states[&first] != State::eNew)
            return;
        std::vector<Step> stack = {{&first, 0}};
        states[&first] = State::eOpen;
        while (!stack.empty()) {
            Step& step = stack.back();
            if (step.next == step.function->callees.size()) {
                states[step.function] = State::eDone;
                stack.pop_back();
                continue;
            }
            const Function* callee = step.function->callees[step.next++];
            State& state = states[callee];
            if (state == State::eOpen) {
                messages_.error(callee->place, "function '" + callee->name + "' calls itself");
            } else if (state == State::eNew) {
                state = State::eOpen;
                stack.push_back({callee, 0});
            }
        }
    }

    SyntaxTree& tree_;
    Messages& messages_;
    std::unordered_map<const Function*, std::vector<Call>> calls_;
    std::unordered_map<const Function*, std::vector<const Function*>> targets_;
};

} // namespace

std::vector<const Function*> targetsOf(const SyntaxTree& tree, const Function& function)
{
    if (!function.owner || !function.owner->isInterface)
        return {function.definition ? function.definition : &function};
    std::vector<const Function*> targets;
    for (const Record* record : tree.records) {
        if (record->implements != function.owner)
            continue;
        for (const Function* method : record->methods) {
            if (method->body && method->name == function.name &&
                hasSameParameters(*method, function))
                targets.push_back(method);
        }
    }
    return targets;
}

void completeCalls(SyntaxTree& tree, Messages& messages)
{
    Completion(tree, messages).run();
}

} // namespace EffectCompiler
