#pragma once

#include "OS/Host/EffectCompiler/EffectRuntime.h"
#include "OS/Host/EffectCompiler/Messages.h"
#include "OS/Host/EffectCompiler/StateValues.h"
#include "OS/Host/EffectCompiler/Syntax.h"

#include <memory>
#include <string_view>
#include <unordered_map>

namespace EffectCompiler {

/// An effect with its tree.
class LoadedEffect final : public Effect
{
public:
    /// Describes what the tree holds; what is wrong with states and profiles goes to messages.
    /// @param tree checked
    LoadedEffect(std::unique_ptr<SyntaxTree> tree, std::vector<std::string> files,
                 Messages& messages);

    /// Whether a pass asks for a profile that is not known. Its message is an error, too.
    bool hasUnknownProfile() const { return hasUnknownProfile_; }

    const std::vector<Parameter>& parameters() const override { return parameters_; }
    const std::vector<Technique>& techniques() const override { return techniques_; }
    const std::vector<std::string>& files() const override { return files_; }
    std::optional<ProgramText> translate(std::size_t technique, std::size_t pass, int version,
                                         std::string& listing) const override;
    bool validate(std::size_t technique, iProgramBuilder& builder,
                  std::string& listing) const override;

private:
    void addParameter(const Variable& variable, Messages& messages);
    Pass describe(const PassSyntax& pass, Messages& messages);
    void describeProgram(const State& state, Pass& pass, Messages& messages);
    std::optional<ProgramText> translate(const PassSyntax& pass, int version,
                                         Messages& messages) const;
    /// Without lines, but with the files that places refer to.
    Messages emptyMessages() const;
    const Variable* find(std::string_view name) const;

    std::unique_ptr<SyntaxTree> tree_;
    std::vector<std::string> files_;
    std::vector<std::string> messageFiles_;
    std::unordered_map<std::string_view, const Variable*> globals_;
    std::vector<Parameter> parameters_;
    std::vector<Technique> techniques_;
    bool hasUnknownProfile_ = false;
};

} // namespace EffectCompiler
