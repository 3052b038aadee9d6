#include "OS/Mac/Effects/ShaderPrograms.h"

#include "OS/Mac/OpenGL/Contexts/OpenGLUtils.h"

#include <algorithm>
#include <cstdlib>
#include <cstring>
#include <utility>

namespace {

bool isMesaInSoftware()
{
    const auto* renderer = reinterpret_cast<const char*>(glGetString(GL_RENDERER));
    return renderer && std::strstr(renderer, "llvmpipe");
}

// Mesa in software takes a short cut where a program only copies a texture, and another one under
// an alpha test: the first forgets the order of the components, the second the test. A sum, and a
// discard that never happens, keep it off them.
std::string withoutShortCuts(const std::string& fragment, bool hasAlphaTest)
{
    const std::size_t firstLine = fragment.find('\n');
    if (firstLine == std::string::npos || fragment.find("gl_FragData[0]") == std::string::npos)
        return fragment;
    std::string text = fragment;
    text.insert(firstLine + 1, "#define main cga_main\n#line 1\n");
    text += "\n#undef main\nuniform vec4 cga_zero;\nvoid main()\n{\n    cga_main();\n";
    if (hasAlphaTest)
        text += "    if (cga_zero.x != 0.0)\n        discard;\n";
    return text + "    gl_FragData[0] += cga_zero;\n}\n";
}

} // namespace

ShaderPrograms& ShaderPrograms::instance()
{
    static auto* const programs = new ShaderPrograms;
    return *programs;
}

unsigned int ShaderPrograms::textureUnits()
{
    return std::min(OpenGLUtils::getNumTextureUnits(), 8u);
}

std::shared_ptr<ShaderProgram> ShaderPrograms::find(const EffectCompiler::ProgramText& given,
                                                    std::string& log, bool hasAlphaTest)
{
    EffectCompiler::ProgramText text = given;
    static const bool needsCare = isMesaInSoftware();
    if (needsCare)
        text.fragment = withoutShortCuts(given.fragment, hasAlphaTest);
    std::string key = text.vertex;
    key += '\0';
    key += text.fragment;
    const auto found = all_.find(key);
    if (found != all_.end())
        return found->second;
    makeRoom();
    if (all_.size() >= kMost) {
        log += "too many different programs\n";
        return {};
    }
    std::shared_ptr<ShaderProgram> made = ShaderProgram::link(text, textureUnits(), log);
    if (made)
        all_.emplace(std::move(key), made);
    return made;
}

void ShaderPrograms::makeRoom()
{
    if (all_.size() < kKept)
        return;
    std::erase_if(all_, [](const auto& entry) {
        return entry.second.use_count() == 1 && entry.second->destroy();
    });
}

int ShaderProgramBuilder::glslVersion() const
{
    const auto* version = reinterpret_cast<const char*>(glGetString(GL_SHADING_LANGUAGE_VERSION));
    if (!version)
        return 120;
    char* rest = nullptr;
    const long major = std::strtol(version, &rest, 10);
    const long minor = *rest == '.' ? std::strtol(rest + 1, nullptr, 10) : 0;
    return major > 1 || minor >= 30 ? 130 : 120;
}

bool ShaderProgramBuilder::build(const EffectCompiler::ProgramText& text, std::string& log)
{
    return ShaderPrograms::instance().find(text, log) != nullptr;
}
