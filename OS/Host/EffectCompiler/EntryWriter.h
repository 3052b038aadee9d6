#pragma once

#include "OS/Host/EffectCompiler/FunctionWriter.h"
#include "OS/Host/EffectCompiler/Semantics.h"
#include "OS/Host/EffectCompiler/StageWriter.h"

#include <set>
#include <string>
#include <vector>

namespace EffectCompiler {

/// Writes main(): calls the entry function of a program with GLSL's inputs and the values that the
/// pass gives it, and hands what it returns to GLSL's outputs.
class EntryWriter
{
public:
    /// @param program a state "compile PROFILE entry(arguments)"
    EntryWriter(StageWriter& stage, const State& program);

    void write();

    /// The attributes or varyings that it reads, in the order of their names.
    const std::set<std::string>& inputs() const { return inputs_; }
    /// The varyings that it writes.
    const std::set<std::string>& outputs() const { return outputs_; }
    /// main(). @param wanted varyings that the next stage reads: those not written get black
    std::string text(const std::set<std::string>& wanted) const;

private:
    std::string argument(const Variable& parameter);
    std::string given(const Variable& parameter);
    GlslValue input(const Type& type, const Semantic& semantic, SourcePlace place);
    GlslValue recordInput(const Type& type, SourcePlace place);
    void output(const Type& type, const std::string& value, const Semantic& semantic,
                SourcePlace place);
    void recordOutput(const Type& type, const std::string& value, SourcePlace place);
    void fill(const Connection& connection, const Type& type, const std::string& value,
              SourcePlace place);

    StageWriter& stage_;
    const State& program_;
    const Function& function_;
    FunctionWriter values_;
    std::size_t nextArgument_ = 0;
    std::set<std::string> inputs_;
    std::set<std::string> outputs_;
    bool hasPosition_ = false;
    LineWriter body_;
};

} // namespace EffectCompiler
