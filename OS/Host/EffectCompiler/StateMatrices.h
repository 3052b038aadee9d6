#pragma once

#include <string>
#include <string_view>

namespace EffectCompiler {

/// The GLSL built-in for a matrix that GL keeps: of "state.matrix.mvp",
/// "glstate.matrix.modelview[0].inverse" and their like, as names and as semantics, without regard
/// to case.
///
/// GLSL counts in columns where effects count in rows, and an effect's matrix is declared so that
/// GLSL's columns are its rows; so what comes back is the transpose of what GL calls by that name.
/// @return empty for other names
std::string stateMatrix(std::string_view path);

} // namespace EffectCompiler
