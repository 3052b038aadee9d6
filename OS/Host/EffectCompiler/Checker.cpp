#include "OS/Host/EffectCompiler/Checker.h"

#include "OS/Host/EffectCompiler/CallGraph.h"
#include "OS/Host/EffectCompiler/ConstantGlobals.h"
#include "OS/Host/EffectCompiler/Declarations.h"
#include "OS/Host/EffectCompiler/ExpressionChecker.h"
#include "OS/Host/EffectCompiler/SamplerKinds.h"
#include "OS/Host/EffectCompiler/StatementChecker.h"
#include "OS/Host/EffectCompiler/Types.h"

#include <algorithm>

namespace EffectCompiler {
namespace {

using Scalar = Type::Scalar;

class TreeChecker
{
public:
    TreeChecker(SyntaxTree& tree, Messages& messages)
        : tree_(tree), messages_(messages), declarations_(tree, messages),
          expressions_(tree, declarations_, messages)
    {
    }

    void run()
    {
        expressions_.scopes().open();
        for (Function* function : tree_.functions)
            checkSignature(*function);
        for (const Variable* global : tree_.globals)
            expressions_.hide(global);
        for (Variable* global : tree_.globals) {
            checkGlobal(*global);
            expressions_.show(global);
        }
        for (Function* function : tree_.functions) {
            if (function->body && !messages_.isFull())
                StatementChecker(expressions_, messages_).checkFunction(*function);
        }
        for (TechniqueSyntax& technique : tree_.techniques) {
            for (PassSyntax& pass : technique.passes) {
                for (State& state : pass.states)
                    checkProgram(state);
            }
        }
        expressions_.scopes().close();
        if (!messages_.hasErrors())
            complete();
    }

private:
    void complete()
    {
        completeCalls(tree_, messages_);
        inferSamplerKinds(tree_, messages_);
        markConstantGlobals(tree_);
    }

    void checkSignature(Function& function)
    {
        for (Variable* parameter : function.parameters) {
            const auto& dims = parameter->type.dims;
            if (std::find(dims.begin(), dims.end(), 0) != dims.end()) {
                messages_.error(parameter->place, "array '" + parameter->name + "' needs a size");
                parameter->type = errorType();
            }
            // Shared with the function's other declarations: becomes what it must be only once.
            if (parameter->initialiser && isVoid(parameter->initialiser->type))
                expressions_.checkInitialiser(parameter->initialiser, parameter->type);
        }
        if (function.owner)
            addSelf(function);
    }

    void addSelf(Function& function)
    {
        Variable& self = tree_.variables.emplace_back();
        self.name = "this";
        self.place = function.place;
        self.type = recordType(function.owner);
        self.isParameter = true;
        function.self = &self;
    }

    void checkGlobal(Variable& global)
    {
        if (isVoid(global.type)) {
            messages_.error(global.place, "'" + global.name + "' cannot be of type 'void'");
            global.type = errorType();
        }
        const bool isChecked = global.initialiser && global.type.scalar != Scalar::eString &&
                               global.type.scalar != Scalar::eTexture &&
                               global.type.scalar != Scalar::eSampler;
        if (isChecked)
            expressions_.checkInitialiser(global.initialiser, global.type);
        const auto& dims = global.type.dims;
        if (std::find(dims.begin(), dims.end(), 0) != dims.end()) {
            messages_.error(global.place, "array '" + global.name + "' needs a size");
            global.type = errorType();
        }
    }

    /// "VertexProgram = compile PROFILE entry(arguments)".
    void checkProgram(State& state)
    {
        if (state.profile.empty() || state.entry.empty())
            return;
        const auto& functions = declarations_.functions(state.entry);
        const auto found = std::find_if(functions.begin(), functions.end(),
                                        [](const Function* function) { return function->body; });
        if (found == functions.end()) // fails that technique, not the effect
            return;
        state.function = *found;
        std::size_t next = 0;
        for (const Variable* parameter : (*found)->parameters) {
            if (!takesArgument(*parameter) || next == state.arguments.size())
                continue;
            expressions_.checkAs(state.arguments[next], parameter->type,
                                 "for '" + parameter->name + "' of '" + state.entry + "'");
            ++next;
        }
        if (next < state.arguments.size())
            messages_.error(state.place, "function '" + state.entry + "' has only " +
                                             std::to_string(next) + " uniform parameters");
    }

    SyntaxTree& tree_;
    Messages& messages_;
    Declarations declarations_;
    ExpressionChecker expressions_;
};

} // namespace

bool takesArgument(const Variable& parameter)
{
    return parameter.isUniform || parameter.type.scalar == Scalar::eSampler ||
           (parameter.type.record && parameter.type.record->isInterface);
}

void check(SyntaxTree& tree, Messages& messages)
{
    TreeChecker(tree, messages).run();
}

} // namespace EffectCompiler
