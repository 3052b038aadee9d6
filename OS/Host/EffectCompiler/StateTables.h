#pragma once

#include "OS/Host/EffectCompiler/Syntax.h"

#include <optional>
#include <string_view>

namespace EffectCompiler {

/// What a state's value is made of, and which names may stand in it.
enum class StateValues
{
    ePlain, ///< numbers
    eBool,
    eWrap,
    eFilter,
    eCompareMode,
    eFunction,
    eDepthMode,
    eBlend,
    eBlendEquation,
    eFace,
    eWinding,
    eFill,
    eStencilOperation,
    eStencilTest, ///< a function, a reference and a mask
    eChannels,
    eFog,
    eShade,
    eLogic,
    eTexture, ///< the name of a texture or sampler
    eProgram
};

struct StateInfo
{
    std::string_view name;
    StateValues values = StateValues::ePlain;
    Type::Scalar scalar = Type::Scalar::eInt;
    int columns = 1;
};

/// Finds a state of samplers or passes, without regard to case.
/// @return null for one that is not known
const StateInfo* findState(std::string_view name);

/// What a name means as a value of such states: the GL value of that meaning. Without regard to
/// case.
std::optional<int> findEnumerant(StateValues values, std::string_view name);

enum class ProgramKind
{
    eNone, ///< the state is no program
    eVertex,
    eFragment,
    eOther ///< geometry and tessellation, which are not translated
};
ProgramKind programKindOf(std::string_view state);

/// Whether "compile NAME .." may ask for it: profiles of all graphics systems, since the stage is
/// what counts here.
bool isKnownProfile(std::string_view name);

} // namespace EffectCompiler
