#pragma once

#include "OS/Mac/Effects/ShaderProgram.h"
#include "OS/Mac/Effects/SheetMesh.h"

#include <OS/Effects/i3DEffect.h>

#include <memory>
#include <optional>

/// i3DEffect with GL.
class OpenGL3DEffect final : public i3DEffect
{
public:
    OpenGL3DEffect();

    void setView(const Matrix& view) override { camera_.view = view; }
    bool setView(const XYZ<float>& eye, const XYZ<float>& at, const XYZ<float>& up) override;
    bool setPerspective(float verticalDegrees, float nearest, float farthest) override;
    void setLight(const Light& light) override { light_ = light; }
    void setLightOff() override { light_.reset(); }
    bool render(const std::vector<Sheet>& sheets, const NormalisedRGB& ground,
                const Tq::Ptr<iGPUImage>& target) override;

private:
    struct Drawable;

    std::vector<Drawable> drawablesOf(const std::vector<Sheet>& sheets, const XY<int>& size,
                                      GLuint output) const;
    bool draw(const std::vector<Drawable>& drawables, const NormalisedRGB& ground, GLuint texture,
              const XY<int>& size, bool isDeep);
    void draw(const Drawable& drawable) const;
    bool makeProgram();
    void setValue(const char* name, const std::vector<float>& numbers) const;
    Matrix projectionFor(const XY<int>& size) const;

    SheetMesh::Camera camera_;
    float verticalDegrees_ = 45.0f;
    float nearest_ = 0.1f;
    float farthest_ = 100.0f;
    std::optional<Light> light_;
    std::shared_ptr<ShaderProgram> program_;
};
