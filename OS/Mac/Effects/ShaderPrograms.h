#pragma once

#include "OS/Mac/Effects/ShaderProgram.h"

#include <cstddef>
#include <map>
#include <memory>
#include <string>

/// The programs of all effects, one for each pair of texts: an effect that is loaded again, and
/// others with the same passes, find theirs here.
///
/// Under the GL lock, with a context of the sharing group current. Those that nobody holds any more
/// are kept for the next; beyond kKept they are deleted, where that is safe. Beyond kMost no more
/// are made.
class ShaderPrograms
{
public:
    static constexpr std::size_t kKept = 128;
    static constexpr std::size_t kMost = 2048;

    static ShaderPrograms& instance();
    ShaderPrograms(const ShaderPrograms&) = delete;
    ShaderPrograms& operator=(const ShaderPrograms&) = delete;

    /// @param hasAlphaTest it will be drawn with under an alpha test
    /// @return null where there is none, with the reason in the log
    std::shared_ptr<ShaderProgram> find(const EffectCompiler::ProgramText& given, std::string& log,
                                        bool hasAlphaTest = false);
    std::size_t size() const { return all_.size(); }

    /// How many textures a pass may read: what the driver has, at most 8.
    static unsigned int textureUnits();

private:
    ShaderPrograms() = default;
    void makeRoom();

    std::map<std::string, std::shared_ptr<ShaderProgram>> all_; // by both texts
};

/// Tries programs for the compiler.
class ShaderProgramBuilder final : public EffectCompiler::iProgramBuilder
{
public:
    int glslVersion() const override;
    bool build(const EffectCompiler::ProgramText& text, std::string& log) override;
};
