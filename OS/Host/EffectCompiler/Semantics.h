#pragma once

#include "OS/Host/EffectCompiler/StageWriter.h"

#include <string>
#include <string_view>

namespace EffectCompiler {

/// ": TEXCOORD3": in capitals, and the number behind it, 0 where there is none.
struct Semantic
{
    std::string name;
    int index = 0;
};

Semantic semanticOf(std::string_view text);

/// Where an input or output of a program comes from, or goes to, in GLSL.
struct Connection
{
    std::string name;        ///< "cgi_TEXCOORD0", "gl_FragDepth"; empty: there is no such thing
    int columns = 4;         ///< of float
    bool isDeclared = false; ///< by us, as an attribute or a varying
};

Connection inputOf(Stage stage, const Semantic& semantic);
Connection outputOf(Stage stage, const Semantic& semantic);

} // namespace EffectCompiler
