#pragma once

#include "OS/Host/EffectCompiler/EffectRuntime.h"
#include "support/TemporaryFolder.h"

#include <map>
#include <string>

/// A second judge of GLSL, beside the driver: glslangValidator, where it is installed.
class GlslJudge
{
public:
    void add(const std::string& name, const EffectCompiler::ProgramText& text);
    /// What it says against the programs added since the last time, each with its text; empty for
    /// nothing.
    std::string verdict();

private:
    void write(const std::string& file, const std::string& text);

    TemporaryFolder folder_;
    std::map<std::string, std::string> texts_; ///< by file
};
