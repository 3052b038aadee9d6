// Draws one frame through the installed library and saves it:   consumer FILE.png

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Media/iMediaServices.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>
#include <OS/Threads/TaskQueue.h>
#include <OS/Threads/iThreadEvent.h>
#include <OS/Threads/iThreadManager.h>

#include <cstdio>

namespace {

// An object of the client's own, counted and destroyed by the library's worker.
class Signal : public iExecutable
{
public:
    explicit Signal(Tq::Ptr<iThreadEvent> done) : done_(std::move(done)) {}
    void execute() override { done_->set(); }

private:
    Tq::Ptr<iThreadEvent> done_;
};

void draw(iGraphicPrimitivesRenderer& renderer, const Tq::Ptr<iFont>& font)
{
    RectDescription ground;
    ground.rect_ = {0, 0, 320, 180};
    ground.topColour_ = NormalisedRGB(0.10f, 0.12f, 0.20f);
    ground.bottomColour_ = NormalisedRGB(0.75f, 0.45f, 0.30f);
    renderer.render(ground);

    EllipseDescription sun;
    sun.rect_ = {130, 70, 190, 130};
    sun.fillColour_ = NormalisedRGB(1.0f, 0.9f, 0.7f);
    renderer.render(sun);

    renderer.render(
        TextDescription(L"Hello", XY<int>(12, 168), NormalisedRGB(1, 1, 1), eTextDefault, font));
}

} // namespace

int main(int argc, char** argv)
{
    if (argc != 2) {
        std::fprintf(stderr, "usage: consumer FILE.png\n");
        return 2;
    }
    const auto done = OS()->threadMgr()->createEvent(false, false, nullptr);
    TaskQueue queue("consumer");
    queue.queue(new Signal(done));
    if (done->wait(10'000) != iWaitable::eWaitSignalled)
        return 1;

    iMediaServices* media = OS()->mediaServices();
    const Tq::Ptr<iHostImage> image = media->createHostSurface(XY<int>(320, 180));
    if (!image)
        return 1;
    if (const auto renderer = image->getPrimitivesRenderer(true))
        draw(*renderer, media->createHostSurfaceFont(L"Tahoma", 16, iFont::eBold));
    return media->saveImage(image, OS()->utils()->fromUTF8(argv[1], -1)) ? 0 : 1;
}
