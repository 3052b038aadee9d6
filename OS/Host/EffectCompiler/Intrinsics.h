#pragma once

#include "OS/Host/EffectCompiler/Types.h"

#include <span>
#include <string_view>

namespace EffectCompiler {

/// A function of the language itself: a row of the table in Intrinsics.cpp. Overloads are rows of
/// the same name.
struct Intrinsic
{
    std::string_view name;
    /// The result's type, then those of the arguments, separated by spaces:
    ///   F   float, or a vector of it: the same for all F of a call
    ///   L   bool, of the shape of F
    ///   B   bool, or a vector of it
    ///   M   a matrix of float
    ///   v b f f2 f3 f4 i i3 i4   void, bool, float .. int4
    ///   s1 s2 s3 sc sr           a sampler of that kind
    /// A "*" before an argument makes it an out argument.
    std::string_view signature;
    /// The call in GLSL 1.30. "$1" stands for the first argument; "@name(" calls a helper.
    std::string_view glsl;
    /// In GLSL 1.20 where that differs; "-" where it cannot be expressed. "!" before it asks for
    /// the extension GL_ARB_shader_texture_lod, in a fragment program.
    std::string_view glsl120 = {};
    bool isForFragments = false; ///< needs derivatives, or discards
};

/// The overloads of a name; empty for none.
std::span<const Intrinsic> intrinsicsNamed(std::string_view name);

/// Splits "h3tex2D" into "tex2D" and 3: texture functions that say how much of the result they
/// want. @return 0, and name as it was, for other names
int textureResultWidth(std::string_view& name);

/// How an overload takes a call's arguments.
struct IntrinsicCall
{
    const Intrinsic* intrinsic = nullptr;
    Type result;
    std::vector<Type> parameters;
    std::vector<bool> isOut;
};

/// @return nothing where the arguments do not fit
std::optional<IntrinsicCall> matchIntrinsic(const Intrinsic& intrinsic,
                                            std::span<const Type> arguments);

} // namespace EffectCompiler
