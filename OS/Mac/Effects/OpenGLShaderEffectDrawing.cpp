// Drawing with an OpenGLShaderEffect.
#include "OS/Mac/Effects/EffectDrawing.h"
#include "OS/Mac/Effects/OpenGLShaderEffect.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Effects/EffectText.h"
#include "OS/Mac/Effects/ShaderPrograms.h"
#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"
#include "OS/Mac/OpenGL/Images/FramebufferBinding.h"

#include <OS/OpenGL/iOpenGLImage.h>

bool OpenGLShaderEffect::draw(const Drawing& drawing)
{
    if (!OpenGLContextProtector::hasContext() || drawing.corners_.size() < 4)
        return false;
    update();
    const std::shared_ptr<EffectContents> all = contents();
    const int technique = techniqueFor(drawing.technique_);
    if (technique < 0 || drawing.size_.x < 1 || drawing.size_.y < 1)
        return false;
    std::string fault;
    const std::vector<PreparedPass>* const passes = all->prepare(
        static_cast<std::size_t>(technique), ShaderProgramBuilder().glslVersion(), fault);
    const bool drawn =
        passes && !passes->empty() && EffectDrawing(*all, *passes, drawing).draw(fault);
    if (!drawn)
        printOnce(fault.empty() ? "there are no passes" : fault);
    return drawn;
}

void OpenGLShaderEffect::printOnce(const std::string& fault)
{
    constexpr std::size_t kMost = 100;
    if (printed_.size() < kMost && printed_.insert(fault).second)
        OSInternal::printLine("OpenGLShaderEffect::draw( %s ) : %s\n",
                              OSInternal::pathToSystem(path_).c_str(), fault.c_str());
}

namespace {

bool canBeDrawnOn(const iGPUImage& image)
{
    switch (image.getFormat()) {
    case iGPUImage::eARGB8:
    case iGPUImage::eRGB32:
    case iGPUImage::eARGB16:
    case iGPUImage::eARGB2101010:
        return true;
    default:
        return false;
    }
}

} // namespace

bool OpenGLShaderEffect::render(const std::vector<Source>& sources,
                                const Tq::Ptr<iGPUImage>& target)
{
    const OpenGLContextProtector protector;
    const Tq::Ptr<iOpenGLImage> image = target.dynamicCast<iOpenGLImage>();
    if (!OpenGLContextProtector::hasContext() || !image || image->getTextureID() == 0 ||
        !canBeDrawnOn(*image))
        return false;
    const XY<int> size = image->getPhysicalSize();
    Drawing drawing;
    drawing.corners_ = {{-1.0f, -1.0f, 0.0f, 0.0f},
                        {1.0f, -1.0f, 1.0f, 0.0f},
                        {1.0f, 1.0f, 1.0f, 1.0f},
                        {-1.0f, 1.0f, 0.0f, 1.0f}};
    drawing.size_ = drawing.outputSize_ = size;
    drawing.blend_ = false;
    for (const Source& source : sources)
        drawing.values_.push_back(iShaderParamValue::makeSource(source.name_, source.resource_));
    const FramebufferBinding binding;
    image->bind();
    glViewport(0, 0, size.x, size.y);
    const bool drawn = draw(drawing);
    image->unbind();
    glFlush();
    return drawn;
}
