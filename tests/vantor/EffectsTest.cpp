#include "Effects/LiveEffect.h"
#include "Model/EffectPanel.h"
#include "Model/Project.h"
#include "Play/Passages.h"
#include "View/Interaction.h"

#include <OS/Windowing/KeyCodes.h>

#include <gtest/gtest.h>

#include <cmath>
#include <string>

namespace Vantor {
namespace {

EffectControl control(const char* name, float least, float most, float initial, float step = 0.0f)
{
    EffectControl control;
    control.parameter = name;
    control.label = L"label";
    control.least = least;
    control.most = most;
    control.step = step;
    control.value = control.initial = initial;
    return control;
}

TEST(EffectControlTest, ShowsAsManyDigitsAsItsStepNeeds)
{
    const struct
    {
        float least, most, step, value;
        const wchar_t* text;
    } cases[] = {
        {0, 1, 0, 0.5f, L"0.50"},      {-1, 1, 0, -0.25f, L"-0.25"}, {0, 100, 1, 40, L"40"},
        {-8, 8, 0.5f, -3.5f, L"-3.5"}, {0, 1, 0, 0.05f, L"0.05"},    {0, 4, 0, 4, L"4.00"},
        {-1, 1, 0, -0.001f, L"0.00"},  {5, 5, 0, 5, L"5.00"},
    };
    for (const auto& c : cases) {
        EffectControl slider = control("x", c.least, c.most, c.value, c.step);
        EXPECT_TRUE(slider.text() == c.text) << c.value << " of " << c.most;
    }
}

TEST(EffectControlTest, StaysOnItsGridAndInItsRange)
{
    EffectControl slider = control("x", -2, 2, 0, 0.5f);
    for (const auto& [share, value] : {std::pair{0.0f, -2.0f},
                                       {0.49f, 0.0f},
                                       {0.6f, 0.5f},
                                       {1.0f, 2.0f},
                                       {7.0f, 2.0f},
                                       {-7.0f, -2.0f}}) {
        slider.setShare(share);
        EXPECT_FLOAT_EQ(slider.value, value) << share;
    }
    slider.moveBy(99);
    EXPECT_FLOAT_EQ(slider.value, 2.0f);
    slider.moveBy(-1);
    EXPECT_FLOAT_EQ(slider.value, 1.5f);
    EXPECT_FLOAT_EQ(control("x", 3, 3, 3).share(), 0.0f) << "a range of nothing";
}

TEST(EffectPanelTest, AReloadedEffectKeepsValuesByName)
{
    EffectPanel panel;
    panel.offer({control("a", 0, 1, 0.5f), control("b", 0, 1, 0.5f)});
    panel.controls[1].value = 0.9f;
    panel.selected = 1;
    panel.offer({control("b", 0, 0.75f, 0.5f), control("c", 0, 1, 0.25f)});
    EXPECT_FLOAT_EQ(panel.controls[0].value, 0.75f) << "kept, as far as its new range goes";
    EXPECT_FLOAT_EQ(panel.controls[1].value, 0.25f);
    panel.offer({});
    EXPECT_EQ(panel.selected, 0);
}

TEST(EffectPanelTest, AReloadedEffectKeepsItsTechniqueByName)
{
    EffectPanel panel;
    panel.chooseTechnique(1);
    EXPECT_TRUE(panel.techniqueName().empty()) << "there is none to choose";
    panel.offer({}, {L"a", L"b", L"c"});
    panel.chooseTechnique(-1);
    EXPECT_TRUE(panel.techniqueName() == L"c");
    panel.offer({}, {L"c", L"d"});
    EXPECT_EQ(panel.technique, 0);
    panel.chooseTechnique(1);
    panel.offer({}, {L"e", L"f"});
    EXPECT_EQ(panel.technique, 0) << "gone";
}

TEST(EffectPanelTest, ChoosingGoesRoundThroughNone)
{
    EffectPanel panel;
    panel.choose(1);
    EXPECT_EQ(panel.chosen, EffectPanel::kNone) << "there is nothing to choose";
    panel.files = {{L"/a.fx", L"A"}, {L"/b.fx", L"B"}};
    std::wstring seen;
    for (const int direction : {1, 1, 1, -1, -1}) {
        panel.choose(direction);
        seen += panel.chosen == EffectPanel::kNone ? L"-" : panel.name().c_str();
    }
    EXPECT_EQ(seen, L"AB-BA");
    panel.choose(Text(L"B"));
    EXPECT_EQ(panel.chosen, 1);
    panel.choose(Text(L"gone"));
    EXPECT_EQ(panel.chosen, EffectPanel::kNone);
}

TEST(LiveEffectTest, NamesEffectsAsWords)
{
    EXPECT_TRUE(effectNameOf(L"/a.b/ColourCorrect.fx") == L"Colour Correct");
    EXPECT_TRUE(effectNameOf(L"blur") == L"blur");
    EXPECT_TRUE(effectNameOf(L"KeyRGB.fx") == L"Key RGB");
    EXPECT_TRUE(effectNameOf(L"/x/") == L"");
}

TEST(LiveEffectTest, ExplainsAListingInShortLines)
{
    const Text trouble = troubleOf(L"/x/a.fx(12) : error : undefined variable \"amuont\"\n"
                                   L"/x/common.fxh(7) : error : no\n"
                                   L"out of memory\n"
                                   L"mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm",
                                   L"/x/a.fx");
    EXPECT_TRUE(trouble == L"line 12: undefined variable\n\"amuont\"\n"
                           L"common.fxh, line 7: no\n"
                           L"out of memory\n"
                           L"mmmmmmmmmmmmmmmmmmmmmmmmmmmmmmmm\nmmmmmmmm\n");
    EXPECT_TRUE(troubleOf(Text(), L"/x/a.fx").empty());
}

Project twoClips(Entrance entrance, int firstLength = 100, int secondLength = 100)
{
    Project project;
    project.insert({Track::ePicture, 0, firstLength, L"a", Effect::eWarm, {}, 0});
    project.insert({Track::ePicture, firstLength, secondLength, L"b", Effect::eWarm, {}, 0});
    project.clips[1].entrance = entrance;
    return project;
}

TEST(PassageTest, LiesAroundACutAsFarAsBothClipsReach)
{
    const struct
    {
        int first, second, from, to;
    } cases[] = {{100, 100, 88, 112}, {10, 100, 5, 22}, {100, 6, 88, 103}};
    for (const auto& c : cases) {
        const Project project = twoClips(Entrance::eDissolve, c.first, c.second);
        EXPECT_FALSE(project.passageAt(Track::ePicture, c.from - 1)) << c.first;
        EXPECT_FALSE(project.passageAt(Track::ePicture, c.to)) << c.first;
        EXPECT_FALSE(project.passageAt(Track::eOverlay, c.from)) << c.first;
        const auto first = project.passageAt(Track::ePicture, c.from);
        const auto last = project.passageAt(Track::ePicture, c.to - 1);
        ASSERT_TRUE(first && last);
        EXPECT_EQ(first->from, 0);
        EXPECT_EQ(first->to, 1);
        EXPECT_FLOAT_EQ(first->progress, 0.0f);
        EXPECT_GT(last->progress, 0.8f);
        EXPECT_LT(last->progress, 1.0f);
    }
}

TEST(PassageTest, NeedsTwoClipsThatTouch)
{
    EXPECT_FALSE(twoClips(Entrance::eCut).passageAt(Track::ePicture, 100));
    Project project = twoClips(Entrance::eWipe);
    project.move(1, 120);
    EXPECT_FALSE(project.passageAt(Track::ePicture, 120));
    EXPECT_EQ(project.nearestCut(Track::ePicture, 0), Project::kNone);
    project.move(1, 100);
    EXPECT_TRUE(project.passageAt(Track::ePicture, 100)) << "it comes back with the clip";
    project.clips[0].entrance = Entrance::eWipe;
    EXPECT_FALSE(project.passageAt(Track::ePicture, 0)) << "nothing stands before the first";
}

TEST(PassageTest, APageLiesFlatAtFirstAndIsGoneInTheEnd)
{
    constexpr float kAspect = 16.0f / 9.0f;
    for (const i3DEffect::MeshPoint& p : turnedPage(kAspect, 0.0f, 16, 1)) {
        EXPECT_NEAR(p.place_.z, 0.0f, 1e-6f);
        EXPECT_NEAR(p.place_.x, (p.u_ - 0.5f) * kAspect, 1e-6f);
    }
    for (const i3DEffect::MeshPoint& p : turnedPage(kAspect, 1.0f, 16, 1))
        EXPECT_LT(p.place_.x, -0.5f * kAspect) << "left of the picture";
    // No point is torn from its neighbour: paper does not stretch.
    for (float progress = 0.0f; progress <= 1.0f; progress += 0.05f) {
        const auto mesh = turnedPage(kAspect, progress, 64, 1);
        for (int i = 1; i <= 64; ++i) {
            const XYZ<float>& a = mesh[static_cast<std::size_t>(i - 1)].place_;
            const XYZ<float>& b = mesh[static_cast<std::size_t>(i)].place_;
            EXPECT_LE(std::hypot(b.x - a.x, b.z - a.z), kAspect / 64 * 1.001f) << progress;
        }
    }
}

class EffectsInteractionTest : public testing::Test
{
protected:
    EffectsInteractionTest()
    {
        state_.project = twoClips(Entrance::eCut);
        state_.player.setLength(200);
        state_.effects.files = {{L"/a.fx", L"A"}, {L"/b.fx", L"B"}};
        state_.effects.offer({control("x", 0, 1, 0.5f), control("y", -1, 1, 0.0f)});
    }
    Point onGroove(int slider, float share) const
    {
        const Rect groove = Layout::groove(layoutOf(state_).slider(slider));
        return {groove.left + static_cast<int>(share * static_cast<float>(groove.width())),
                centreOf(groove).y};
    }

    EditorState state_;
    Interaction interaction_{state_, [](Focus, const Text&) { return std::vector<int>(); }};
};

TEST_F(EffectsInteractionTest, SlidersFollowTheMouse)
{
    interaction_.press(onGroove(1, 0.25f), 0, 1000);
    EXPECT_NEAR(state_.effects.controls[1].value, -0.5f, 0.02f);
    interaction_.move({5000, 0});
    EXPECT_FLOAT_EQ(state_.effects.controls[1].value, 1.0f);
    interaction_.release({5000, 0});
    EXPECT_EQ(state_.focus, Focus::eEffects);
    EXPECT_EQ(state_.effects.selected, 1);
    // Twice puts it back.
    interaction_.press(onGroove(1, 1.0f), 0, 2000);
    interaction_.release(onGroove(1, 1.0f));
    interaction_.press(onGroove(1, 1.0f), 0, 2100);
    interaction_.release(onGroove(1, 1.0f));
    EXPECT_FLOAT_EQ(state_.effects.controls[1].value, 0.0f);
}

TEST_F(EffectsInteractionTest, AnEffectThatVanishesUnderADragDoesNoHarm)
{
    interaction_.press(onGroove(1, 0.25f), 0, 1000);
    state_.effects.offer({});
    interaction_.move({700, 300});
    interaction_.release({700, 300});
    EXPECT_TRUE(state_.effects.controls.empty());
}

TEST_F(EffectsInteractionTest, KeysMoveTheSelectedSlider)
{
    interaction_.press(centreOf(layoutOf(state_).effectName), 0, 1000);
    interaction_.release({0, 0});
    interaction_.key(Key::eDown, 0);
    interaction_.key(Key::eRight, 0);
    interaction_.key(Key::eRight, Key::eShift);
    EXPECT_NEAR(state_.effects.controls[1].value, 0.22f, 1e-5f);
    interaction_.key(Key::eDelete, 0);
    EXPECT_FLOAT_EQ(state_.effects.controls[1].value, 0.0f);
    EXPECT_EQ(state_.project.clips.size(), 2u);
    interaction_.key(Key::ePageDown, 0);
    EXPECT_EQ(state_.effects.chosen, 0);
    interaction_.key('.', 0);
    EXPECT_EQ(state_.effects.chosen, 1);
}

TEST_F(EffectsInteractionTest, AKeyMakesTransitionsAndUndoTakesThemBack)
{
    interaction_.key('x', 0);
    EXPECT_EQ(state_.project.clips[1].entrance, Entrance::eDissolve);
    EXPECT_EQ(state_.changes(), 1);
    interaction_.key('x', 0);
    interaction_.key('x', 0);
    interaction_.key('x', 0);
    EXPECT_EQ(state_.project.clips[1].entrance, Entrance::eCut);
    interaction_.key('z', Key::eControl);
    EXPECT_EQ(state_.project.clips[1].entrance, Entrance::ePageTurn);
    state_.project.move(1, 150);
    interaction_.key('x', 0);
    EXPECT_FALSE(state_.message.empty());
}

} // namespace
} // namespace Vantor
