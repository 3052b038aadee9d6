#include "OS/Mac/Effects/EffectTextures.h"

#include <QOpenGLContext>

namespace {

GLenum bindingOf(GLenum target)
{
    switch (target) {
    case GL_TEXTURE_1D:
        return GL_TEXTURE_BINDING_1D;
    case GL_TEXTURE_3D:
        return GL_TEXTURE_BINDING_3D;
    case GL_TEXTURE_CUBE_MAP:
        return GL_TEXTURE_BINDING_CUBE_MAP;
    case GL_TEXTURE_RECTANGLE:
        return GL_TEXTURE_BINDING_RECTANGLE;
    default:
        return GL_TEXTURE_BINDING_2D;
    }
}

void specifyBlank(GLenum target)
{
    const GLubyte clear[4] = {};
    switch (target) {
    case GL_TEXTURE_1D:
        return glTexImage1D(target, 0, GL_RGBA, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, clear);
    case GL_TEXTURE_3D:
        return glTexImage3D(target, 0, GL_RGBA, 1, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, clear);
    case GL_TEXTURE_CUBE_MAP:
        for (GLenum face = 0; face < 6; ++face)
            glTexImage2D(GL_TEXTURE_CUBE_MAP_POSITIVE_X + face, 0, GL_RGBA, 1, 1, 0, GL_RGBA,
                         GL_UNSIGNED_BYTE, clear);
        return;
    default:
        return glTexImage2D(target, 0, GL_RGBA, 1, 1, 0, GL_RGBA, GL_UNSIGNED_BYTE, clear);
    }
}

} // namespace

EffectTextureResources& EffectTextureResources::instance()
{
    static auto* const resources = new EffectTextureResources;
    return *resources;
}

GLuint EffectTextureResources::sampler(const SamplerStates& states)
{
    if (!hasSamplerObjects_) {
        const QOpenGLContext* const context = QOpenGLContext::currentContext();
        hasSamplerObjects_ = context->format().version() >= qMakePair(3, 3) ||
                             context->hasExtension("GL_ARB_sampler_objects");
    }
    if (!*hasSamplerObjects_)
        return 0;
    const auto found = samplers_.find(states);
    if (found != samplers_.end())
        return found->second;
    if (samplers_.size() >= kMostSamplers)
        return 0;
    GLuint name = 0;
    glGenSamplers(1, &name);
    glSamplerParameteri(name, GL_TEXTURE_WRAP_S, static_cast<GLint>(states.addressU));
    glSamplerParameteri(name, GL_TEXTURE_WRAP_T, static_cast<GLint>(states.addressV));
    glSamplerParameteri(name, GL_TEXTURE_WRAP_R, static_cast<GLint>(states.addressW));
    glSamplerParameteri(name, GL_TEXTURE_MIN_FILTER, static_cast<GLint>(states.minFilter));
    glSamplerParameteri(name, GL_TEXTURE_MAG_FILTER, static_cast<GLint>(states.magFilter));
    glSamplerParameterfv(name, GL_TEXTURE_BORDER_COLOR, states.border.data());
    samplers_.emplace(states, name);
    return name;
}

GLuint EffectTextureResources::blank(GLenum target)
{
    GLuint& name = blanks_[target];
    if (name == 0) {
        GLint before = 0;
        glGetIntegerv(bindingOf(target), &before);
        glGenTextures(1, &name);
        glBindTexture(target, name);
        glTexParameteri(target, GL_TEXTURE_MIN_FILTER, GL_NEAREST);
        glTexParameteri(target, GL_TEXTURE_MAG_FILTER, GL_NEAREST);
        glTexParameteri(target, GL_TEXTURE_WRAP_S, GL_CLAMP_TO_EDGE);
        glTexParameteri(target, GL_TEXTURE_WRAP_T, GL_CLAMP_TO_EDGE);
        specifyBlank(target);
        glBindTexture(target, static_cast<GLuint>(before));
    }
    return name;
}

EffectTexturesInUse::EffectTexturesInUse()
{
    glGetIntegerv(GL_ACTIVE_TEXTURE, &active_);
}

EffectTexturesInUse::~EffectTexturesInUse()
{
    for (std::size_t i = units_.size(); i-- > 0;) {
        const Unit& unit = units_[i];
        glActiveTexture(GL_TEXTURE0 + static_cast<GLenum>(i));
        if (unit.kept)
            putBack(unit.target, *unit.kept);
        if (unit.hasSampler)
            glBindSampler(static_cast<GLuint>(i), static_cast<GLuint>(unit.sampler));
        glBindTexture(unit.target, static_cast<GLuint>(unit.binding));
    }
    glActiveTexture(static_cast<GLenum>(active_));
}

void EffectTexturesInUse::bind(GLenum target, const EffectTexture& texture,
                               const SamplerStates& states)
{
    EffectTextureResources& resources = EffectTextureResources::instance();
    const auto number = static_cast<GLuint>(units_.size());
    Unit unit{target, 0, 0, false, {}};
    glActiveTexture(GL_TEXTURE0 + number);
    glGetIntegerv(bindingOf(target), &unit.binding);
    const bool isBlank = texture.name == 0 || texture.target != target;
    glBindTexture(target, isBlank ? resources.blank(target) : texture.name);
    if (!isBlank) {
        if (const GLuint sampler = resources.sampler(states)) {
            unit.hasSampler = true;
            glGetIntegerv(GL_SAMPLER_BINDING, &unit.sampler);
            glBindSampler(number, sampler);
        } else {
            unit.kept = exchange(target, states);
        }
    }
    units_.push_back(unit);
}

EffectTexturesInUse::Kept EffectTexturesInUse::exchange(GLenum target, const SamplerStates& states)
{
    Kept kept;
    glGetTexParameteriv(target, GL_TEXTURE_WRAP_S, &kept.wrap[0]);
    glGetTexParameteriv(target, GL_TEXTURE_WRAP_T, &kept.wrap[1]);
    glGetTexParameteriv(target, GL_TEXTURE_WRAP_R, &kept.wrap[2]);
    glGetTexParameteriv(target, GL_TEXTURE_MIN_FILTER, &kept.filters[0]);
    glGetTexParameteriv(target, GL_TEXTURE_MAG_FILTER, &kept.filters[1]);
    glGetTexParameterfv(target, GL_TEXTURE_BORDER_COLOR, kept.border);
    const auto i = [](GLenum value) { return static_cast<GLint>(value); };
    Kept wanted{{i(states.addressU), i(states.addressV), i(states.addressW)},
                {i(states.minFilter), i(states.magFilter)},
                {states.border[0], states.border[1], states.border[2], states.border[3]}};
    putBack(target, wanted);
    return kept;
}

void EffectTexturesInUse::putBack(GLenum target, const Kept& kept)
{
    glTexParameteri(target, GL_TEXTURE_WRAP_S, kept.wrap[0]);
    glTexParameteri(target, GL_TEXTURE_WRAP_T, kept.wrap[1]);
    glTexParameteri(target, GL_TEXTURE_WRAP_R, kept.wrap[2]);
    glTexParameteri(target, GL_TEXTURE_MIN_FILTER, kept.filters[0]);
    glTexParameteri(target, GL_TEXTURE_MAG_FILTER, kept.filters[1]);
    glTexParameterfv(target, GL_TEXTURE_BORDER_COLOR, kept.border);
}
