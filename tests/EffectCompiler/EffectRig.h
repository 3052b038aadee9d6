#pragma once

#include "OS/Host/EffectCompiler/EffectRuntime.h"

#include <array>
#include <memory>
#include <string>

/// Draws passes with the GL of the display, in a context of its own, and reads what they draw.
///
/// Inputs of every pass: texture coordinates 0 and 1 of (1/4, 1/4, 0, 1) and (3/4, 1/2, 0, 1) and
/// the colour (1, 0, 1, 1), everywhere. Parameters by name: k = (.25, .5, .75, 1), kf = .5, ki = 2,
/// kb = true, ua = .1 .2 .3, ustr = .5 .25, matrices 0/16, 1/16 .. row by row; samplers Tex0
/// and Tex1 of red, green, blue and white texels, 1D and rectangle ones of red, 3D ones of
/// (.25, .25, .5), cubes with a green side at +z. Others have their initial values.
class EffectRig
{
public:
    using Pixel = std::array<float, 4>;

    EffectRig();
    ~EffectRig();
    EffectRig(const EffectRig&) = delete;
    EffectRig& operator=(const EffectRig&) = delete;

    /// Of the first pass of the first technique.
    /// @return what is wrong, empty for nothing
    std::string draw(const EffectCompiler::Effect& effect, int version, Pixel& pixel);
    /// Of programs in GLSL. @param log gets what the driver says
    bool draw(const EffectCompiler::Effect& effect, const EffectCompiler::ProgramText& text,
              Pixel& pixel, std::string& log);
    /// Compiles and links. @return a program, or 0
    unsigned int link(const EffectCompiler::ProgramText& text, std::string& log);

private:
    struct Connection;
    std::unique_ptr<Connection> connection_;
};

/// An effect of one pass that draws with the fragment program "main" of a source, or its listing.
std::unique_ptr<EffectCompiler::Effect> loadFragment(const std::string& source,
                                                     std::string& listing);
