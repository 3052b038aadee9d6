#include "Editor.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <iterator>
#include <random>
#include <string>

namespace Vantor {
namespace {

void expectSound(const EditorState& state, unsigned int seed, int step)
{
    const Project& project = state.project;
    const int clips = static_cast<int>(project.clips.size());
    const auto where = [&] {
        return "seed " + std::to_string(seed) + " step " + std::to_string(step);
    };
    ASSERT_LT(state.selectedClip, clips) << where();
    ASSERT_LT(state.bin.selected, static_cast<int>(state.bin.items.size())) << where();
    ASSERT_GE(state.player.frame(), 0) << where();
    ASSERT_LE(state.player.frame(), std::max(project.length - 1, 0)) << where();
    ASSERT_GE(project.length, project.contentEnd()) << where();
    ASSERT_GE(state.view.origin, 0.0) << where();
    ASSERT_EQ(state.player.length(), project.length) << where();
    const Layout layout = layoutOf(state);
    ASSERT_TRUE(layout.picture.intersection(layout.screen).hasArea()) << where();
    ASSERT_LE(state.titleField.caret, state.titleField.text.size()) << where();
    ASSERT_LE(state.filterField.caret, state.filterField.text.size()) << where();
    for (int i = 0; i < clips; ++i) {
        const Clip& a = project.clips[static_cast<std::size_t>(i)];
        ASSERT_GE(a.start, 0) << where();
        ASSERT_GE(a.length, Project::kShortest) << where();
        for (int j = i + 1; j < clips; ++j) {
            const Clip& b = project.clips[static_cast<std::size_t>(j)];
            ASSERT_FALSE(a.track == b.track && a.start < b.end() && b.start < a.end()) << where();
        }
    }
}

/// Sends one event that a hand or a cat on the keyboard could cause.
void sendAny(Editor& editor, std::mt19937& random, std::int64_t& time)
{
    static constexpr std::uint32_t kKeys[] = {Key::eSpace,
                                              Key::eTab,
                                              Key::eReturn,
                                              Key::eEscape,
                                              Key::eLeft,
                                              Key::eRight,
                                              Key::eUp,
                                              Key::eDown,
                                              Key::eHome,
                                              Key::eBackspace,
                                              Key::eDelete,
                                              Key::eEnd,
                                              Key::eF1 + 1,
                                              'a',
                                              'f',
                                              'j',
                                              'k',
                                              'l',
                                              'n',
                                              's',
                                              't',
                                              '1',
                                              '2',
                                              '5',
                                              '[',
                                              ']',
                                              'y',
                                              'z',
                                              '+',
                                              '-',
                                              0,
                                              0x1F600};
    const auto below = [&](int limit) {
        return static_cast<int>(random() % static_cast<unsigned int>(limit));
    };
    const std::uint32_t modifiers =
        (below(4) == 0 ? Key::eShift : 0u) | (below(5) == 0 ? Key::eControl : 0u);
    time += below(500);
    if (below(3) == 0) {
        iEventHandler::KeyEvent key;
        key.code = kKeys[below(static_cast<int>(std::size(kKeys)))];
        key.modifiers = modifiers;
        key.pressed = below(5) != 0;
        editor.handleKey(key);
    } else if (below(20) == 0) {
        iEventHandler::TimerEvent timer;
        timer.time = time;
        editor.handleTimer(timer);
    } else if (below(60) == 0) {
        iEventHandler::WindowEvent window;
        window.kind = iEventHandler::WindowEvent::eHidden;
        editor.handleWindowEvent(window);
    } else if (below(60) == 0) {
        editor.handleFileDrop(L"/nowhere/dropped" + decimal(below(9)) +
                              (below(2) ? L".png" : L".txt"));
    } else {
        iEventHandler::MouseEvent mouse;
        mouse.time = time;
        mouse.position = {below(1400) - 60, below(800) - 40};
        mouse.kind = static_cast<std::uint32_t>(1 + below(6));
        mouse.modifiers = modifiers;
        mouse.wheelDirection = below(2) ? 1 : -1;
        editor.handleMouse(mouse);
    }
}

/// Whatever the state has become, it can be drawn.
void drawAsItIs(const EditorState& state)
{
    Resources resources(1.25);
    Stores stores(resources);
    const Tq::Ptr<iHostImage> surface = resources.blank({0, 0, state.size.x, state.size.y});
    ASSERT_TRUE(surface);
    drawFrame(state, resources, stores, surface->getPrimitivesRenderer(true), 100);
}

TEST(AnyEventsTest, NoSequenceOfEventsBreaksTheState)
{
    for (unsigned int seed = 1; seed <= 40; ++seed) {
        MediaBin bin;
        for (const wchar_t* name : {L"chart.tif", L"dawn.jpg", L"pier.jpg", L"quay.bmp"})
            bin.items.push_back({name, Text(L"/nowhere/") + name, L"PNG"});
        Tq::Ptr<Editor> editor(
            new Editor(makeEditorState(seed % 4 == 0 ? MediaBin() : bin, Text())));
        std::mt19937 random(seed);
        std::int64_t time = 0;
        for (int step = 0; step < 1500; ++step) {
            sendAny(*editor, random, time);
            expectSound(editor->state(), seed, step);
            if (HasFatalFailure())
                return;
        }
        if (seed % 4 < 2)
            drawAsItIs(editor->state());
    }
}

} // namespace
} // namespace Vantor
