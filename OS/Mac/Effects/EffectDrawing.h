#pragma once

#include "OS/Mac/OpenGL/Contexts/GL.h"

#include "OS/Mac/Effects/EffectContents.h"
#include "OS/Mac/Effects/EffectTextures.h"
#include "OS/Mac/OpenGL/Drawing/ReadablePicture.h"

#include <OS/Effects/iShaderEffectBase.h>
#include <OS/OpenGL/iOpenGLImage.h>

#include <string>
#include <vector>

class GLStateKeeper;

/// One drawing with an effect: pass after pass into render targets and the output.
///
/// Under the GL lock with a context current and the output bound. GL's state is afterwards what it
/// was before.
class EffectDrawing
{
public:
    EffectDrawing(const EffectContents& contents, const std::vector<PreparedPass>& passes,
                  const iShaderEffectBase::Drawing& drawing);
    EffectDrawing(const EffectDrawing&) = delete;
    EffectDrawing& operator=(const EffectDrawing&) = delete;

    /// @param fault gets the reason where the answer is false
    bool draw(std::string& fault);

private:
    class TargetInUse;
    struct Target
    {
        Tq::Ptr<iOpenGLImage> image;
        bool isDefined = false; // all of its pixels have been drawn
    };
    // Each a place, then texture coordinates: of each picture, and of the whole.
    struct Vertices
    {
        std::vector<float> numbers;
        std::size_t sets = 1;
        bool areWhole = true; // all pictures are: one set serves them
        GLsizei count = 0;
    };

    void findTextures();
    int targetRead(const PreparedPass::Unit& unit) const;
    bool makeTarget(int index, std::string& fault);
    bool makeTargets(std::string& fault);
    void defineTargets(const PreparedPass& pass, const GLStateKeeper& state);
    void drawToOutput(const PreparedPass& pass);
    void drawToTarget(const PreparedPass& pass, const GLStateKeeper& state);
    void drawPass(const PreparedPass& pass, const Vertices& vertices, const XY<int>& size);
    EffectTexture textureOf(const PreparedPass::Unit& unit) const;
    EffectTexture textureNamed(const std::string& name) const;
    std::vector<float> numbersOf(const OpenGLShaderParam& param, const XY<int>& size) const;
    static void overrideBy(const iShaderParamValue& value, std::vector<float>& numbers);
    void startVertices(Vertices& vertices) const;
    void addVertex(Vertices& vertices, float x, float y, float s, float t) const;
    Vertices outputVertices() const;
    Vertices targetVertices() const;
    static void send(const PreparedPass& pass, const Vertices& vertices);

    const EffectContents& contents_;
    const std::vector<PreparedPass>& passes_;
    const iShaderEffectBase::Drawing& drawing_;
    std::vector<EffectTexture> inputs_;
    std::vector<Target> targets_;
    std::vector<GLDrawing::ReadablePicture>
        copies_; // of pictures that could not be read as they are
};
