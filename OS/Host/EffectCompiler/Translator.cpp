#include "OS/Host/EffectCompiler/Translator.h"

#include "OS/Host/EffectCompiler/EntryWriter.h"
#include "OS/Host/EffectCompiler/StateTables.h"

namespace EffectCompiler {
namespace {

/// Writes both programs of a pass.
class PassWriter
{
public:
    PassWriter(const SyntaxTree& tree, const PassSyntax& pass, int version, Messages& messages)
        : pass_(pass), version_(version), names_(tree),
          vertex_(tree, names_, Stage::eVertex, version, messages),
          fragment_(tree, names_, Stage::eFragment, version, messages)
    {
    }

    std::optional<ProgramText> write()
    {
        findPrograms();
        ProgramText text;
        std::set<std::string> varyings = {"cgi_COLOR0"};
        if (fragmentState_)
            text.fragment = fragmentText(varyings);
        else
            text.fragment = defaultFragment();
        text.vertex = vertexState_ ? vertexText(varyings) : defaultVertex(varyings);
        if (vertex_.isRefused() || fragment_.isRefused())
            return {};
        if (vertexState_)
            vertex_.addUniforms(text.uniforms);
        if (fragmentState_)
            fragment_.addUniforms(text.uniforms);
        return text;
    }

private:
    void findPrograms()
    {
        for (const State& state : pass_.states) {
            const State* program = state.function ? &state : nullptr; // else "= NULL"
            switch (programKindOf(state.name)) {
            case ProgramKind::eVertex:
                vertexState_ = program;
                break;
            case ProgramKind::eFragment:
                fragmentState_ = program;
                break;
            default:
                break;
            }
        }
    }

    std::string head() const { return "#version " + std::to_string(version_) + "\n"; }

    std::string declare(const char* old, const char* direction, const std::set<std::string>& names)
    {
        std::string text;
        for (const std::string& name : names)
            text += std::string(version_ < 130 ? old : direction) + " vec4 " + name + ";\n";
        return text.empty() ? text : text + "\n";
    }

    std::string fragmentText(std::set<std::string>& varyings)
    {
        EntryWriter entry(fragment_, *fragmentState_);
        entry.write();
        fragment_.writeFunctions();
        if (fragment_.isRefused())
            return {};
        varyings = entry.inputs();
        return assemble(fragment_, declare("varying", "in", varyings), entry.text({}));
    }

    std::string vertexText(const std::set<std::string>& varyings)
    {
        EntryWriter entry(vertex_, *vertexState_);
        entry.write();
        vertex_.writeFunctions();
        if (vertex_.isRefused())
            return {};
        std::set<std::string> outputs = entry.outputs();
        outputs.insert(varyings.begin(), varyings.end());
        return assemble(vertex_,
                        declare("attribute", "in", entry.inputs()) +
                            declare("varying", "out", outputs),
                        entry.text(varyings));
    }

    /// Extensions come first, where GLSL wants them.
    std::string assemble(StageWriter& stage, const std::string& variables, const std::string& main)
    {
        const std::string declarations = stage.declarations();
        return head() + stage.extensions() + variables + declarations + main;
    }

    std::string defaultVertex(const std::set<std::string>& varyings)
    {
        std::string text = head() + declare("varying", "out", varyings) +
                           "void main()\n{\n"
                           "    gl_Position = gl_ModelViewProjectionMatrix * gl_Vertex;\n";
        for (const std::string& name : varyings)
            text += "    " + name + " = " + fixedFunction(name) + ";\n";
        return text + "}\n";
    }

    /// Where GL without programs has it.
    static std::string fixedFunction(const std::string& varying)
    {
        if (varying == "cgi_COLOR0")
            return "gl_Color";
        if (varying == "cgi_COLOR1")
            return "gl_SecondaryColor";
        constexpr std::string_view kCoordinate = "cgi_TEXCOORD";
        const bool isCoordinate = varying.starts_with(kCoordinate) &&
                                  varying.size() == kCoordinate.size() + 1 && varying.back() < '8';
        return isCoordinate ? std::string("gl_MultiTexCoord") + varying.back()
                            : "vec4(0.0, 0.0, 0.0, 1.0)";
    }

    std::string defaultFragment()
    {
        return head() + declare("varying", "in", {"cgi_COLOR0"}) +
               "void main()\n{\n    gl_FragData[0] = cgi_COLOR0;\n}\n";
    }

    const PassSyntax& pass_;
    int version_;
    PassNames names_;
    StageWriter vertex_;
    StageWriter fragment_;
    const State* vertexState_ = nullptr;
    const State* fragmentState_ = nullptr;
};

} // namespace

std::optional<ProgramText> translate(const SyntaxTree& tree, const PassSyntax& pass, int version,
                                     Messages& messages)
{
    return PassWriter(tree, pass, version, messages).write();
}

} // namespace EffectCompiler
