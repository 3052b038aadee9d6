#include "Drawing/PictureScaler.h"
#include "Editor.h"
#include "FrameWriter.h"
#include "support/SampleProgramTest.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Media/iMediaServices.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <filesystem>
#include <functional>
#include <set>

namespace Vantor {
namespace {

namespace fs = std::filesystem;

Text wide(const std::string& text)
{
    return OS()->utils()->fromUTF8(text.c_str(), -1);
}

std::uint32_t pixel(const Tq::Ptr<iHostImage>& image, int x, int y)
{
    const Tq::Ptr<iPixelGuard> guard = image->lock();
    std::uint32_t value = 0;
    std::memcpy(&value,
                guard->getPixels() + static_cast<std::ptrdiff_t>(y) * guard->getStride() + x * 4,
                4);
    return value;
}

int colours(const Tq::Ptr<iHostImage>& image)
{
    std::set<std::uint32_t> seen;
    const XY<int> size = image->getSize();
    for (int y = 0; y < size.y; y += 3)
        for (int x = 0; x < size.x; x += 3)
            seen.insert(pixel(image, x, y));
    return static_cast<int>(seen.size());
}

class FrameTest : public SampleProgramTest
{
protected:
    FrameTest() : SampleProgramTest("vantor", VANTOR_PROGRAM) {}

    Tq::Ptr<iHostImage> load(const std::string& name) const
    {
        return OS()->mediaServices()->loadImage(wide((folder_ / name).string()));
    }
};

TEST_F(FrameTest, WritesAFrameOfTheRightSizeThatIsNotBlank)
{
    static const struct
    {
        const char* options;
        int width, height;
    } kCases[] = {
        {"", 1280, 720},
        {"--size 960x600 --scale 1.25", 1200, 750},
        {"--size 1280x720 --scale 1.5", 1920, 1080},
        {"--size 960x600 --scale 2", 1920, 1200},
    };
    for (const auto& c : kCases) {
        const std::string file = (folder_ / "frame.png").string();
        const Outcome outcome =
            run(std::string(VANTOR_MEDIA) + " --frame " + file + " " + c.options);
        ASSERT_EQ(outcome.status, 0) << c.options << outcome.errors;
        const Tq::Ptr<iHostImage> image = load("frame.png");
        ASSERT_TRUE(image);
        EXPECT_EQ(image->getSize(), XY<int>(c.width, c.height)) << c.options;
        EXPECT_GT(colours(image), 2000) << c.options;
        // The ground and the top bar's gradient are drawn to the corners.
        EXPECT_NE(pixel(image, 0, 0) & 0xFFFFFF, 0u);
        EXPECT_EQ(pixel(image, 0, c.height - 1) >> 24, 255u);
    }
}

TEST_F(FrameTest, BadArgumentsEndWithOneLine)
{
    static const struct
    {
        const char* arguments;
        int status;
        const char* says;
    } kCases[] = {
        {"--frame", 2, "--frame needs a value"},
        {"--frame ''", 2, "--frame needs the name"},
        {"--size 12", 2, "--size takes"},
        {"--size 100x100", 2, "--size takes"},
        {"--size 1280x720x", 2, "--size takes"},
        {"--size 99999999999x720", 2, "--size takes"},
        {"--scale 3", 2, "--scale takes"},
        {"--seconds -1", 2, "--seconds takes"},
        {"--seconds 1s", 2, "--seconds takes"},
        {"--at 1:99", 2, "--at takes"},
        {"--json", 2, "--json goes with --gl-report"},
        {"--grab", 2, "--grab needs a value"},
        {"--wrong", 2, "unknown option \"--wrong\""},
        {"one two", 2, "more than one folder: \"two\""},
        {"''", 2, "empty"},
        {"/nowhere/at/all --frame /tmp/never.png", 1, "cannot read the folder \"/nowhere/at/all\""},
        {VANTOR_MEDIA " --frame /nowhere/frame.png", 1, "cannot write \"/nowhere/frame.png\""},
        {VANTOR_MEDIA " --frame /tmp/frame.xyz", 1, "cannot write \"/tmp/frame.xyz\""},
    };
    for (const auto& c : kCases) {
        const Outcome outcome = run(c.arguments);
        EXPECT_EQ(outcome.status, c.status) << c.arguments;
        EXPECT_NE(outcome.errors.find(c.says), std::string::npos)
            << c.arguments << ": " << outcome.errors;
        EXPECT_EQ(std::count(outcome.errors.begin(), outcome.errors.end(), '\n'), 1) << c.arguments;
    }
    EXPECT_EQ(run("--help").status, 0);
    EXPECT_EQ(run("--version").status, 0);
}

TEST_F(FrameTest, BrokenAndForeignFilesDoNoHarm)
{
    std::ofstream(folder_ / "broken.jpg") << "\xFF\xD8\xFF\xE0 not a picture";
    std::ofstream(folder_ / "broken.png") << "PNG?";
    std::ofstream(folder_ / "empty.tif");
    std::ofstream(folder_ / "notes.txt") << "hello";
    fs::create_directory(folder_ / "folder.png");
    fs::copy(VANTOR_MEDIA "/dawn.jpg",
             folder_ /
                 "a very long name that does not fit under its picture by any means at all.jpg");
    const Outcome outcome =
        run("'" + folder_.string() + "' --frame '" + (folder_ / "out.png").string() + "'");
    EXPECT_EQ(outcome.status, 0) << outcome.errors;
    EXPECT_TRUE(load("out.png"));
}

/// A state drawn on a surface of its own.
Tq::Ptr<iHostImage> drawn(EditorState state, double scale)
{
    Resources resources(scale);
    Stores stores(resources);
    Tq::Ptr<iHostImage> surface = resources.blank({0, 0, state.size.x, state.size.y});
    drawFrame(state, resources, stores, surface->getPrimitivesRenderer(true), 1000);
    return surface;
}

bool differ(const Tq::Ptr<iHostImage>& a, const Tq::Ptr<iHostImage>& b)
{
    const Tq::Ptr<iPixelGuard> one = a->lock();
    const Tq::Ptr<iPixelGuard> other = b->lock();
    const XY<int> size = one->getSize();
    for (int y = 0; y < size.y; ++y)
        if (std::memcmp(one->getPixels() + static_cast<std::ptrdiff_t>(y) * one->getStride(),
                        other->getPixels() + static_cast<std::ptrdiff_t>(y) * other->getStride(),
                        static_cast<std::size_t>(size.x) * 4) != 0)
            return true;
    return false;
}

EditorState sampleState()
{
    MediaBin bin;
    addFolder(bin, wide(VANTOR_MEDIA));
    return makeEditorState(bin, Text());
}

// Every state that a user can bring about is to be seen. VANTOR_TEST_PICTURES names a folder that
// keeps the pictures for looking at.
std::vector<EffectControl> sampleControls()
{
    EffectControl gain;
    gain.parameter = "Gain";
    gain.label = L"Gain";
    gain.most = 4.0f;
    gain.value = gain.initial = 1.0f;
    EffectControl lift = gain;
    lift.parameter = "Lift";
    lift.label = L"Lift of all the dark parts of the picture";
    lift.least = -1.0f;
    lift.most = 1.0f;
    lift.value = -0.25f;
    return {gain, lift};
}

TEST_F(FrameTest, EveryStateIsDrawnDifferently)
{
    const struct
    {
        const char* name;
        std::function<void(EditorState&)> change;
    } states[] = {
        {"hover-tile",
         [](EditorState& s) {
             s.hover = {Area::eTile, 0};
         }},
        {"hover-clip",
         [](EditorState& s) {
             s.hover = {Area::eClip, 3};
         }},
        {"hover-clip-end",
         [](EditorState& s) {
             s.hover = {Area::eClipEnd, 3};
         }},
        {"hover-title",
         [](EditorState& s) {
             s.hover = {Area::eTitle, 0};
         }},
        {"hover-ruler",
         [](EditorState& s) {
             s.hover = {Area::eRuler, 0};
         }},
        {"hover-head",
         [](EditorState& s) {
             s.hover = {Area::eHead, 1};
         }},
        {"hover-bin-edge",
         [](EditorState& s) {
             s.hover = {Area::eBinEdge, 0};
         }},
        {"hover-button",
         [](EditorState& s) {
             s.hover = {Area::eButton, 2};
         }},
        {"pressed-button",
         [](EditorState& s) {
             s.hover = s.pressed = {Area::eButton, 2};
         }},
        {"disabled-buttons", [](EditorState& s) { s.player.seek(0); }},
        {"focus-bin", [](EditorState& s) { s.focus = Focus::eBin, s.focusShown = true; }},
        {"focus-timeline", [](EditorState& s) { s.focusShown = true; }},
        {"focus-button", [](EditorState& s) { s.focus = Focus::eStop, s.focusShown = true; }},
        {"editing-title",
         [](EditorState& s) { s.focus = Focus::eTitle, s.titleField.selectAll(); }},
        {"filtered",
         [](EditorState& s) {
             s.focus = Focus::eFilter, s.filterField.set(L"r"), s.bin.filter = L"r";
         }},
        {"filtered-away", [](EditorState& s) { s.filterField.set(L"xyz"), s.bin.filter = L"xyz"; }},
        {"empty-bin", [](EditorState& s) { s.bin = {}; }},
        {"all-empty",
         [](EditorState& s) {
             s.bin = {}, s.project = makeProject({}, Text()), s.selectedClip = -1,
             s.player.setLength(0);
         }},
        {"missing",
         [](EditorState& s) {
             for (MediaItem& item : s.bin.items)
                 item.path = L"/nowhere/" + item.name;
         }},
        {"title-and-fade", [](EditorState& s) { s.player.seek(200); }},
        {"overlay", [](EditorState& s) { s.player.seek(400); }},
        {"playing",
         [](EditorState& s) {
             s.player.shuttle(1), s.player.shuttle(1);
             s.shown = {1234, 3, 24.8, false};
         }},
        {"loop", [](EditorState& s) { s.player.setLoop(true); }},
        {"rate", [](EditorState& s) { s.player.setRate(kFrameRates[2]); }},
        {"time-code", [](EditorState& s) { s.choices.viewer.timeCode = true; }},
        {"frame-number", [](EditorState& s) { s.choices.viewer.frameNumber = true; }},
        {"no-safe-areas", [](EditorState& s) { s.choices.viewer.safeAreas = false; }},
        {"viewer-half", [](EditorState& s) { s.choices.viewer.zoom = ViewerZoom::eHalf; }},
        {"viewer-full", [](EditorState& s) { s.choices.viewer.zoom = ViewerZoom::eFull; }},
        {"viewer-shifted",
         [](EditorState& s) {
             s.choices.viewer.zoom = ViewerZoom::eDouble, s.choices.viewer.shift = {400, -300};
         }},
        {"hover-chip",
         [](EditorState& s) {
             s.hover = {Area::eChip, 4};
         }},
        {"test-clip",
         [](EditorState& s) {
             s.bin.add(testClip()), s.project.clips[3].name = L"Test clip", s.player.seek(300);
         }},
        {"reverse", [](EditorState& s) { s.player.shuttle(-1); }},
        {"zoomed", [](EditorState& s) { s.view.scale = 12.0, s.view.origin = 130.0; }},
        {"dragging-media",
         [](EditorState& s) {
             s.drag.kind = Drag::Kind::eMedia, s.drag.index = 4, s.drag.moved = true;
             s.pointer = {400, 540};
         }},
        {"long-names",
         [](EditorState& s) {
             for (MediaItem& item : s.bin.items)
                 item.name = L"a very long name of " + item.name;
             for (Clip& clip : s.project.clips)
                 clip.name = L"a clip whose name is much longer than the clip itself is wide on "
                             L"the timeline";
             s.message = Text(400, L'm');
         }},
        {"transition", [](EditorState& s) { s.player.seek(187); }},
        {"wipe",
         [](EditorState& s) { s.project.clips[3].entrance = Entrance::eWipe, s.player.seek(187); }},
        {"effect",
         [](EditorState& s) {
             s.effects.files = {{L"/x/ColourCorrect.fx", L"Colour Correct"}};
             s.effects.chosen = 0;
             s.effects.offer(sampleControls());
         }},
        {"effect-techniques",
         [](EditorState& s) {
             s.effects.files = {{L"/x/Wipe.fx", L"Wipe"}};
             s.effects.chosen = 0;
             s.effects.offer(sampleControls(), {L"Straight", L"Clock"});
         }},
        {"effect-focus",
         [](EditorState& s) {
             s.effects.offer(sampleControls());
             s.focus = Focus::eEffects, s.focusShown = true, s.effects.selected = 1;
         }},
        {"effect-trouble",
         [](EditorState& s) {
             s.effects.offer(sampleControls());
             s.effects.trouble = L"line 12: undefined variable\n\"amuont\"\n"
                                 L"common.fxh, line 40: a technique\nneeds a name\n";
         }},
        {"hover-effect-button",
         [](EditorState& s) {
             s.hover = {Area::eEffectButton, 1};
         }},
        {"no-panels", [](EditorState& s) { s.choices.effects = s.choices.scopes = false; }},
        {"no-scopes", [](EditorState& s) { s.scopes.trouble = L"no compute device"; }},
        {"message",
         [](EditorState& s) { s.message = L"notes.txt is not a picture that can be loaded"; }},
    };
    const char* keep = std::getenv("VANTOR_TEST_PICTURES");
    const Tq::Ptr<iHostImage> plain = drawn(sampleState(), 1.0);
    for (const auto& c : states) {
        EditorState state = sampleState();
        c.change(state);
        const Tq::Ptr<iHostImage> image = drawn(state, 1.0);
        EXPECT_TRUE(differ(image, plain)) << c.name;
        if (keep)
            OS()->mediaServices()->saveImage(image,
                                             wide(std::string(keep) + "/" + c.name + ".png"));
    }
}

TEST(PictureScalerTest, AveragesWhenShrinkingAndBlendsWhenGrowing)
{
    iMediaServices* media = OS()->mediaServices();
    const Tq::Ptr<iHostImage> checks = media->createHostSurface({8, 8});
    {
        const Tq::Ptr<iPixelGuard> guard = checks->lock();
        for (int y = 0; y < 8; ++y)
            for (int x = 0; x < 8; ++x) {
                const std::uint32_t value = (x + y) % 2 != 0 ? 0xFFFFFFFFu : 0xFF000000u;
                std::memcpy(guard->getPixels() + y * guard->getStride() + x * 4, &value, 4);
            }
    }
    const Tq::Ptr<iHostImage> small = media->createHostSurface({3, 3});
    ASSERT_TRUE(scalePicture(checks, {0, 0, 6, 6}, small));
    for (int i = 0; i < 9; ++i)
        EXPECT_EQ(pixel(small, i % 3, i / 3), 0xFF808080u) << i;

    const Tq::Ptr<iHostImage> same = media->createHostSurface({8, 8});
    ASSERT_TRUE(scalePicture(checks, {0, 0, 8, 8}, same));
    EXPECT_FALSE(differ(same, checks)) << "one to one is exact";

    const Tq::Ptr<iHostImage> large = media->createHostSurface({50, 30});
    ASSERT_TRUE(scalePicture(checks, {1, 0, 2, 1}, large));
    EXPECT_EQ(pixel(large, 49, 29), 0xFFFFFFFFu) << "a single pixel fills everything";
}

TEST(PictureScalerTest, RefusesWhatHasNoPixels)
{
    const Tq::Ptr<iHostImage> image = OS()->mediaServices()->createHostSurface({4, 4});
    EXPECT_FALSE(scalePicture(nullptr, {0, 0, 4, 4}, image));
    EXPECT_FALSE(scalePicture(image, {0, 0, 4, 4}, nullptr));
    EXPECT_FALSE(scalePicture(image, {9, 9, 20, 20}, image));
}

TEST(PictureScalerTest, PartsKeepTheirShape)
{
    EXPECT_EQ(partOfShape({1920, 1080}, {100, 100}), (Tq::Rectangle<int>{420, 0, 1500, 1080}));
    EXPECT_EQ(partOfShape({100, 400}, {200, 100}), (Tq::Rectangle<int>{0, 175, 100, 225}));
    EXPECT_EQ(fitInto({400, 100}, {10, 10, 210, 210}), (Tq::Rectangle<int>{10, 85, 210, 135}));
    EXPECT_EQ(partOfShape({0, 0}, {10, 10}), Tq::Rectangle<int>());
}

} // namespace
} // namespace Vantor
