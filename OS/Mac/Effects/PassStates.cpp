#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/Effects/PassStates.h"

#include "OS/Mac/Effects/EffectText.h"

#include <algorithm>
#include <cmath>

using namespace EffectCompiler;

namespace {

// Blending is collected: its functions take several states together.
struct Blending
{
    GLenum source = GL_ONE, dest = GL_ZERO;
    GLenum sourceAlpha = GL_ONE, destAlpha = GL_ZERO;
    bool isSet = false;

    void set(GLenum s, GLenum d)
    {
        source = sourceAlpha = s;
        dest = destAlpha = d;
        isSet = true;
    }
};

class States
{
public:
    void apply(const StateAssignment& state);
    void finish() const;

private:
    double number(std::size_t i, double missing = 0.0) const
    {
        return i < numbers_->size() ? (*numbers_)[i] : missing;
    }
    GLenum value(std::size_t i = 0) const
    {
        return static_cast<GLenum>(std::clamp(number(i), 0.0, 4294967295.0));
    }
    void enable(GLenum what) const { (number(0) != 0.0 ? glEnable : glDisable)(what); }
    bool blendingIs(std::string_view name);
    bool depthIs(std::string_view name) const;
    bool facesAre(std::string_view name) const;
    bool stencilIs(std::string_view name);
    bool is(std::string_view name, const char* a, const char* b = "") const
    {
        return EffectText::equalsNoCase(name, a) || EffectText::equalsNoCase(name, b);
    }

    const std::vector<double>* numbers_ = nullptr;
    Blending blending_;
    GLenum alphaFunction_ = GL_ALWAYS;
    float alphaReference_ = 0.0f;
    bool hasAlphaTest_ = false;
};

bool States::blendingIs(std::string_view name)
{
    if (is(name, "AlphaBlendEnable", "BlendEnable")) {
        enable(GL_BLEND);
    } else if (is(name, "BlendFunc")) {
        blending_.set(value(0), value(1));
    } else if (is(name, "BlendFuncSeparate")) {
        blending_ = {value(0), value(1), value(2), value(3), true};
    } else if (is(name, "SrcBlend")) {
        blending_.set(value(), blending_.dest);
    } else if (is(name, "DestBlend")) {
        blending_.set(blending_.source, value());
    } else if (is(name, "BlendEquation", "BlendOp")) {
        glBlendEquation(value());
    } else if (is(name, "BlendColor")) {
        const auto f = [this](std::size_t i) { return static_cast<GLfloat>(number(i)); };
        glBlendColor(f(0), f(1), f(2), f(3));
    } else if (is(name, "AlphaTestEnable")) {
        enable(GL_ALPHA_TEST);
    } else if (is(name, "AlphaFunc")) {
        hasAlphaTest_ = true;
        alphaFunction_ = value(0);
        if (numbers_->size() > 1)
            alphaReference_ = static_cast<float>(number(1));
    } else if (is(name, "AlphaRef")) {
        hasAlphaTest_ = true;
        alphaReference_ = static_cast<float>(number(0));
    } else if (is(name, "ColorMask") && numbers_->size() > 1) {
        const auto on = [this](std::size_t i) -> GLboolean { return number(i) != 0.0; };
        glColorMask(on(0), on(1), on(2), on(3));
    } else if (is(name, "ColorWriteEnable", "ColorMask")) {
        const auto bits = value(); // red, green, blue and alpha from the lowest
        const auto on = [bits](int i) -> GLboolean { return (bits >> i & 1) != 0; };
        glColorMask(on(0), on(1), on(2), on(3));
    } else {
        return false;
    }
    return true;
}

bool States::depthIs(std::string_view name) const
{
    if (is(name, "DepthTestEnable", "ZEnable"))
        enable(GL_DEPTH_TEST);
    else if (is(name, "DepthMask", "ZWriteEnable"))
        glDepthMask(number(0) != 0.0);
    else if (is(name, "DepthFunc", "ZFunc"))
        glDepthFunc(value());
    else
        return false;
    return true;
}

bool States::facesAre(std::string_view name) const
{
    if (is(name, "CullFaceEnable")) {
        enable(GL_CULL_FACE);
    } else if (is(name, "CullFace")) {
        glCullFace(value());
    } else if (is(name, "CullMode")) { // a face, or none
        (value() != 0 ? glEnable : glDisable)(GL_CULL_FACE);
        if (value() != 0)
            glCullFace(value());
    } else if (is(name, "FrontFace")) {
        glFrontFace(value());
    } else if (is(name, "PolygonMode", "FillMode")) {
        glPolygonMode(GL_FRONT_AND_BACK, value(numbers_->size() > 1 ? 1 : 0));
    } else if (is(name, "ScissorTestEnable")) {
        if (number(0) == 0.0)
            return true; // the clip region stays
        enable(GL_SCISSOR_TEST);
    } else {
        return false;
    }
    return true;
}

bool States::stencilIs(std::string_view name)
{
    const auto i = [this](std::size_t n) { return static_cast<GLint>(value(n)); };
    if (is(name, "StencilTestEnable", "StencilEnable"))
        enable(GL_STENCIL_TEST);
    else if (is(name, "StencilFunc") && numbers_->size() >= 3)
        glStencilFunc(value(0), i(1), value(2));
    else if (is(name, "StencilOp") && numbers_->size() >= 3)
        glStencilOp(value(0), value(1), value(2));
    else if (is(name, "StencilMask", "StencilWriteMask"))
        glStencilMask(value());
    else
        return false;
    return true;
}

void States::apply(const StateAssignment& state)
{
    numbers_ = &state.value.numbers;
    if (numbers_->empty())
        return;
    blendingIs(state.name) || depthIs(state.name) || facesAre(state.name) || stencilIs(state.name);
}

void States::finish() const
{
    if (blending_.isSet)
        glBlendFuncSeparate(blending_.source, blending_.dest, blending_.sourceAlpha,
                            blending_.destAlpha);
    if (hasAlphaTest_)
        glAlphaFunc(alphaFunction_, alphaReference_);
}

} // namespace

void applyPassStates(const std::vector<StateAssignment>& states)
{
    if (states.empty())
        return;
    States applied;
    for (const StateAssignment& state : states)
        applied.apply(state);
    applied.finish();
}
