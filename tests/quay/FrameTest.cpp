#include "Drawing/Scene.h"
#include "MadeUpData.h"
#include "support/SampleProgramTest.h"

#include <OS.h>
#include <OS/Core/iUtils.h>
#include <OS/Media/iMediaServices.h>

#include <gtest/gtest.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <set>

namespace Quay {
namespace {

namespace fs = std::filesystem;

Text wide(const std::string& text)
{
    return OS()->utils()->fromUTF8(text.c_str(), -1);
}

/// Keeps the places of all texts.
class TextRecorder final : public iGraphicPrimitivesRenderer
{
public:
    void setClipRegion(Tq::Ptr<iRegion>) override {}
    void setAntialiasingEnabled(bool) override {}
    void renderMulti(const RectDescription*, unsigned int) override {}
    void renderMulti(const EllipseDescription*, unsigned int) override {}
    void renderMulti(const LineDescription*, unsigned int) override {}
    void renderMulti(const AlphaRectDescription*, unsigned int) override {}
    void renderMulti(const BezierCurveDescription*, unsigned int) override {}
    void renderMulti(const ImageDescription*, unsigned int) override {}
    void renderMulti(const ImageDescriptionEx*, unsigned int) override {}
    void renderMulti(const TextDescription* descs, unsigned int count) override
    {
        texts.insert(texts.end(), descs, descs + count);
    }

    std::vector<TextDescription> texts;
};

Tq::Ptr<iHostImage> drawn(const BoardState& state, double scale)
{
    Resources resources(scale);
    const Tq::Ptr<iHostImage> surface = resources.blank({0, 0, state.size.x, state.size.y});
    drawBoard(state, resources, surface->getPrimitivesRenderer(true));
    return surface;
}

bool differ(const Tq::Ptr<iHostImage>& a, const Tq::Ptr<iHostImage>& b)
{
    const Tq::Ptr<iPixelGuard> one = a->lock();
    const Tq::Ptr<iPixelGuard> other = b->lock();
    for (int y = 0; y < one->getSize().y; ++y)
        if (std::memcmp(one->getPixels() + static_cast<std::ptrdiff_t>(y) * one->getStride(),
                        other->getPixels() + static_cast<std::ptrdiff_t>(y) * other->getStride(),
                        static_cast<std::size_t>(one->getSize().x) * 4) != 0)
            return true;
    return false;
}

int colours(const Tq::Ptr<iHostImage>& image)
{
    std::set<std::uint32_t> seen;
    const Tq::Ptr<iPixelGuard> guard = image->lock();
    for (int y = 0; y < guard->getSize().y; y += 3)
        for (int x = 0; x < guard->getSize().x; x += 3) {
            std::uint32_t value = 0;
            std::memcpy(&value,
                        guard->getPixels() + static_cast<std::ptrdiff_t>(y) * guard->getStride() +
                            x * 4,
                        4);
            seen.insert(value);
        }
    return static_cast<int>(seen.size());
}

/// Whether a text lies in one of a few rectangles, `slack` target pixels more or less.
bool liesIn(const TextDescription& text, const std::vector<Rect>& places, int slack)
{
    const int width = text.font_->measure(text.text_).x;
    return std::any_of(places.begin(), places.end(), [&](const Rect& place) {
        return text.pos_.x >= place.left - slack && text.pos_.x + width <= place.right + slack &&
               text.pos_.y >= place.top && text.pos_.y <= place.bottom;
    });
}

TEST(DrawingTest, NoTextLeavesItsPanel)
{
    const BoardData machines[] = {
        {}, madeUpData(2, 1, 1), madeUpData(64, 12, 3), withLongNames(madeUpData(16, 7, 5))};
    for (const Point& size : {Point(480, 320), Point(640, 480), Point(960, 600), Point(1280, 800),
                              Point(1920, 1080), Point(3840, 2160)})
        for (const double scale : {1.0, 1.25, 1.5, 2.0})
            for (const BoardData& machine : machines) {
                const BoardState state = madeUpState(machine, size);
                const Layout layout = layoutOf(state);
                Resources resources(scale);
                std::vector<Rect> places{resources.scaled(layout.topBar),
                                         resources.scaled(layout.status)};
                for (const PanelPlace& place : layout.panels) {
                    places.push_back(resources.scaled(place.header));
                    places.push_back(resources.scaled(inset(place.body, 4)));
                }
                const Tq::Ptr<TextRecorder> recorder(new TextRecorder);
                drawBoard(state, resources, recorder);
                EXPECT_GT(recorder->texts.size(), 5u);
                for (const TextDescription& text : recorder->texts)
                    EXPECT_TRUE(liesIn(text, places, 2))
                        << OS()->utils()->toUTF8(text.text_).c_str() << " at " << text.pos_.x
                        << ", " << text.pos_.y << " of " << size.x << "x" << size.y << " scale "
                        << scale;
            }
}

// Every state that a user can bring about is to be seen. QUAY_TEST_PICTURES names a folder that
// keeps the pictures for looking at.
TEST(DrawingTest, EveryStateIsDrawnDifferently)
{
    const struct
    {
        const char* name;
        Point size;
        double scale;
        BoardData data;
        std::function<void(BoardState&)> change;
    } states[] = {
        {"hover-folder",
         {1280, 800},
         1.0,
         madeUpData(8, 6, 2),
         [](BoardState& s) {
             s.hover = {Area::eAction, 5, 1, 0};
         }},
        {"pressed-choice",
         {1280, 800},
         1.0,
         madeUpData(8, 6, 2),
         [](BoardState& s) {
             s.hover = s.pressed = {Area::eAction, 6, 1, 2};
         }},
        {"hover-header",
         {1280, 800},
         1.0,
         madeUpData(8, 6, 2),
         [](BoardState& s) {
             s.hover = {Area::eHeader, 1};
         }},
        {"focus-panel",
         {1280, 800},
         1.0,
         madeUpData(8, 6, 2),
         [](BoardState& s) {
             s.focus = {Area::eHeader, 3}, s.focusShown = true;
         }},
        {"focus-choice",
         {1280, 800},
         1.0,
         madeUpData(8, 6, 2),
         [](BoardState& s) {
             s.focus = {Area::eAction, 6, 1, 0}, s.focusShown = true;
         }},
        {"dragging",
         {1280, 800},
         1.0,
         madeUpData(8, 6, 2),
         [](BoardState& s) {
             s.drag = {Drag::Kind::ePanel, 0, 0, {50, 50}, true};
             s.pointer = {700, 400};
         }},
        {"message",
         {1280, 800},
         1.0,
         madeUpData(8, 6, 2),
         [](BoardState& s) { s.message = L"/home/editor/ is being shown"; }},
        {"nothing", {1280, 800}, 1.0, {}, {}},
        {"serial-silent", {1280, 800}, 1.0, withSerialBytes(madeUpData(8, 6, 2), 0), {}},
        {"serial-bytes", {1280, 800}, 1.0, withSerialBytes(madeUpData(8, 6, 2), 1234), {}},
        {"midi-silent", {1280, 800}, 1.0, withMidiMessages(madeUpData(8, 6, 2), 0), {}},
        {"midi-messages", {1280, 800}, 1.0, withMidiMessages(madeUpData(8, 6, 2), 1234), {}},
        {"small", {480, 320}, 1.5, madeUpData(4, 3, 1), {}},
        {"960", {960, 600}, 1.0, madeUpData(4, 3, 2), {}},
        {"960-at-2", {960, 600}, 2.0, madeUpData(8, 3, 1), {}},
        {"1280-at-1.5", {1280, 800}, 1.5, madeUpData(16, 3, 2), {}},
        {"1920", {1920, 1080}, 1.0, madeUpData(16, 6, 3), {}},
        {"3840", {3840, 2160}, 1.0, madeUpData(64, 12, 3), {}},
        {"1920-at-2", {1920, 1080}, 2.0, madeUpData(32, 7, 2), {}},
        {"64-processors", {1280, 800}, 1.0, madeUpData(64, 3, 1), {}},
        {"12-drives", {1280, 800}, 1.0, madeUpData(4, 12, 1), {}},
        {"512-processors", {1280, 800}, 1.0, madeUpData(512, 3, 1), {}},
        {"long-names", {1280, 800}, 1.0, withLongNames(madeUpData(8, 7, 3)), {}},
        {"scrolled",
         {960, 600},
         1.0,
         madeUpData(64, 12, 3),
         [](BoardState& s) { s.scroll = 200, s.hover = {Area::eScrollBar}; }},
    };
    const char* keep = std::getenv("QUAY_TEST_PICTURES");
    const Tq::Ptr<iHostImage> plain = drawn(madeUpState(madeUpData(8, 6, 2)), 1.0);
    for (const auto& c : states) {
        BoardState state = madeUpState(c.data, c.size);
        if (c.change)
            c.change(state);
        const Tq::Ptr<iHostImage> image = drawn(state, c.scale);
        EXPECT_GT(colours(image), 40) << c.name;
        if (image->getSize() == plain->getSize()) {
            EXPECT_TRUE(differ(image, plain)) << c.name;
        }
        if (keep)
            OS()->mediaServices()->saveImage(image,
                                             wide(std::string(keep) + "/" + c.name + ".png"));
    }
    if (keep)
        OS()->mediaServices()->saveImage(plain, wide(std::string(keep) + "/plain.png"));
}

class ProgramTest : public SampleProgramTest
{
protected:
    ProgramTest() : SampleProgramTest("quay", QUAY_PROGRAM) {}
};

TEST_F(ProgramTest, WritesAFrameOfThisMachine)
{
    static const struct
    {
        const char* options;
        Point size;
    } kCases[] = {{"", {1280, 800}},
                  {"--size 960x600 --scale 2", {1920, 1200}},
                  {"--size 480x320 --scale 1.25", {600, 400}}};
    for (const auto& c : kCases) {
        const std::string file = (folder_ / "frame.png").string();
        const Outcome outcome = run("--frame '" + file + "' " + c.options);
        ASSERT_EQ(outcome.status, 0) << c.options << outcome.errors;
        const Tq::Ptr<iHostImage> image = OS()->mediaServices()->loadImage(wide(file));
        ASSERT_TRUE(image);
        EXPECT_EQ(image->getSize(), c.size) << c.options;
        EXPECT_GT(colours(image), 100) << c.options;
    }
}

TEST_F(ProgramTest, TheNextRunBeginsWhereTheLastOneEnded)
{
    const fs::path file = folder_ / "Quay Board/Preferences/UserSettings.txt";
    const auto contents = [&] {
        std::ifstream stream(file);
        return std::string(std::istreambuf_iterator<char>(stream), {});
    };
    fs::create_directories(file.parent_path());
    std::ofstream(file) << "[Board]\nOrder=system memory\nRefreshMs=500\nUnits=decimal\n\n";
    ASSERT_EQ(run("--size 900x700 --seconds 1").status, 0);
    const std::string first = contents();
    for (const char* line : {"Order=system memory\n", "RefreshMs=500\n", "Units=decimal\n",
                             "Width=900\n", "Height=700\n"})
        EXPECT_NE(first.find(line), std::string::npos) << line << first;
    ASSERT_EQ(run("--seconds 1").status, 0);
    EXPECT_EQ(contents(), first);

    std::ofstream(file)
        << "[Board\n[Board]\nRefreshMs=-7\nUnits=\xFF\n[Window]\nWidth=nan\nHeight=1e99\n";
    EXPECT_EQ(run("--seconds 1").status, 0);
    EXPECT_NE(contents().find("RefreshMs=1000\n"), std::string::npos) << contents();
}

TEST_F(ProgramTest, BadArgumentsEndWithOneLine)
{
    static const struct
    {
        const char* arguments;
        int status;
        const char* says;
    } kCases[] = {
        {"--frame", 2, "--frame needs a value"},
        {"--frame ''", 2, "--frame needs the name"},
        {"--size 100x100", 2, "--size takes WxH between 480x320 and 7680x4320, not \"100x100\""},
        {"--scale 3", 2, "--scale takes"},
        {"--seconds 0", 2, "--seconds takes"},
        {"--wrong", 2, "unknown option \"--wrong\""},
        {"folder", 2, "no arguments but options are taken: \"folder\""},
        {"--frame /nowhere/frame.png", 1, "cannot write \"/nowhere/frame.png\""},
        {"--frame /tmp/frame.xyz", 1, "the name must end in .png"},
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

} // namespace
} // namespace Quay
