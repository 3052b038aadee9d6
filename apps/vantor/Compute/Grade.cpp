#include "Compute/Grade.h"

#include <OS.h>
#include <OS/Media/iMediaServices.h>

namespace Vantor {

std::unique_ptr<Grade> Grade::make()
{
    std::unique_ptr<Grade> grade(new Grade);
    grade->device_ = ComputeDevice::instance();
    const Tq::Ptr<iGPUProgram> program = grade->device_->compile(L"ColourCorrect.cl");
    grade->kernel_ = program ? program->getKernel("colourCorrect") : nullptr;
    return grade->kernel_ ? std::move(grade) : nullptr;
}

Tq::Ptr<iGPUImage> Grade::apply(const Tq::Ptr<iGPUImage>& image, const GradeValues& values)
{
    if (!image)
        return nullptr;
    const XY<int> size = image->getSize();
    const Tq::Ptr<iGPUImage> result =
        OS()->mediaServices()->createGPUSurface(size, iGPUImage::eARGB8);
    const Tq::Ptr<iGPUComputeContext>& context = device_->context();
    const Tq::Ptr<iGPUBuffer> from = context->createBuffer(image);
    const Tq::Ptr<iGPUBuffer> to = result ? context->createBuffer(result) : nullptr;
    const bool made =
        from && to && kernel_->setArg(0, from) && kernel_->setArg(1, to) &&
        kernel_->setArg(2, values.lift) && kernel_->setArg(3, values.gamma) &&
        kernel_->setArg(4, values.gain) && kernel_->setArg(5, values.saturation) &&
        kernel_->execute2D(static_cast<unsigned int>(size.x), static_cast<unsigned int>(size.y));
    return made ? result : nullptr;
}

} // namespace Vantor
