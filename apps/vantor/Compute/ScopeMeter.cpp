#include "Compute/ScopeMeter.h"

#include <cstring>

namespace Vantor {

namespace {

constexpr int kLevels = ScopeCounts::kLevels;
constexpr int kHistograms = 4;

bool read(const iGPUBuffer& buffer, std::size_t counts, std::vector<std::uint32_t>& into)
{
    const Tq::Ptr<unsigned char> bytes = buffer.copyToHost();
    if (!bytes)
        return false;
    into.resize(counts);
    std::memcpy(into.data(), bytes.get(), counts * sizeof(std::uint32_t));
    return true;
}

} // namespace

std::unique_ptr<ScopeMeter> ScopeMeter::make(Text& trouble)
{
    std::unique_ptr<ScopeMeter> meter(new ScopeMeter);
    meter->device_ = ComputeDevice::instance();
    const Tq::Ptr<iGPUComputeContext>& context = meter->device_->context();
    if (!context) {
        trouble = kNoComputeDevice;
        return nullptr;
    }
    trouble = L"the scopes' kernels cannot be used";
    const Tq::Ptr<iGPUProgram> program = meter->device_->compile(L"Scopes.cl");
    if (!program)
        return nullptr;
    meter->clear_ = program->getKernel("clearCounts");
    meter->measure_ = program->getKernel("measure");
    const auto buffer = [&](int counts) {
        return context->createBuffer(static_cast<unsigned int>(counts) * sizeof(std::uint32_t));
    };
    meter->waveform_ = buffer(kLevels * kColumns);
    meter->vectors_ = buffer(kLevels * kLevels);
    meter->histogram_ = buffer(kLevels * kHistograms);
    if (!meter->clear_ || !meter->measure_ || !meter->waveform_ || !meter->vectors_ ||
        !meter->histogram_)
        return nullptr;
    trouble.clear();
    return meter;
}

bool ScopeMeter::count(const Tq::Ptr<iGPUImage>& image)
{
    const Tq::Ptr<iGPUBuffer> picture = device_->context()->createBuffer(image);
    if (!picture)
        return false;
    const auto columns = static_cast<short>(kColumns);
    const bool cleared = clear_->setArg(0, waveform_) && clear_->setArg(1, vectors_) &&
                         clear_->setArg(2, histogram_) && clear_->setArg(3, columns) &&
                         clear_->execute1D(kLevels * kColumns);
    const XY<int> size = image->getSize();
    return cleared && measure_->setArg(0, picture) && measure_->setArg(1, waveform_) &&
           measure_->setArg(2, vectors_) && measure_->setArg(3, histogram_) &&
           measure_->setArg(4, columns) &&
           measure_->execute2D(static_cast<unsigned int>(size.x),
                               static_cast<unsigned int>(size.y));
}

std::shared_ptr<const ScopeCounts> ScopeMeter::measure(const Tq::Ptr<iGPUImage>& image)
{
    if (!image || !count(image))
        return nullptr;
    auto counts = std::make_shared<ScopeCounts>();
    counts->columns = kColumns;
    counts->pixels = image->getSize().x * image->getSize().y;
    const bool isRead = read(*waveform_, kLevels * kColumns, counts->waveform) &&
                        read(*vectors_, kLevels * kLevels, counts->vectors) &&
                        read(*histogram_, kLevels * kHistograms, counts->histogram);
    return isRead ? counts : nullptr;
}

} // namespace Vantor
