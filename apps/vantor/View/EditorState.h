#pragma once

#include "Control/Controller.h"
#include "Model/EffectPanel.h"
#include "Model/MediaBin.h"
#include "Model/Project.h"
#include "Model/ScopeReading.h"
#include "Model/TextField.h"
#include "Model/TimeView.h"
#include "Model/Transport.h"
#include "View/Layout.h"

#include <cstdint>
#include <vector>

namespace Vantor {

/// What the pointer can be over.
enum class Area
{
    eNone,
    eTitle,
    eFilter,
    eTile, ///< the index is the item's
    eBin,
    eBinEdge,
    eTimelineEdge,
    eViewer,
    eChip,         ///< the index is a ViewerChip
    eButton,       ///< the index is the button's
    eEffectButton, ///< the index is an EffectButton
    eEffects,
    eSlider, ///< the index is the slider's
    eScopes,
    eController,
    eRuler,
    ePlayhead,
    eClip, ///< the index is the clip's; so for its two edges
    eClipStart,
    eClipEnd,
    eLane, ///< the index is the track's
    eHead
};

struct Hit
{
    Area area = Area::eNone;
    int index = -1;

    bool is(Area which, int at) const { return area == which && index == at; }
    friend bool operator==(const Hit&, const Hit&) = default;
};

/// Where the keyboard goes, in the order of the Tab key.
enum class Focus : int
{
    eTitle,
    eFilter,
    eBin,
    eBackwards,
    eStop,
    eForwards,
    eEffects,
    eTimeline
};
constexpr int kFocusCount = 8;

/// What is being dragged since the button went down.
struct Drag
{
    enum class Kind
    {
        eNone,
        ePlayhead,
        eClip,
        eClipStart,
        eClipEnd,
        eMedia,
        eText,
        eBinEdge,
        eTimelineEdge,
        eShift, ///< of the viewer's picture
        eSlider
    };
    Kind kind = Kind::eNone;
    int index = -1;
    int grab = 0; ///< what lies between the pointer and what it holds, in frames or pixels
    Point from;   ///< where the button went down
    bool moved = false;
    Project before; ///< what undo goes back to
};

/// What became of the frames, for the status line.
struct ShownFrames
{
    std::uint64_t presented = 0;
    std::uint64_t dropped = 0;
    double rate = 0.0; ///< frames a second while playing; 0: unknown
    bool byGL = false; ///< in a video window

    friend bool operator==(const ShownFrames&, const ShownFrames&) = default;
};

/// Everything that the editor shows and edits: plain data.
struct EditorState
{
    Point size{1280, 720};
    LayoutChoices choices;
    Project project;
    std::vector<Project> undone; ///< what redo goes forward to
    std::vector<Project> done;   ///< what undo goes back to
    MediaBin bin;
    Transport player;
    TimeView view;
    EffectPanel effects;
    ScopeReading scopes;

    int selectedClip = Project::kNone;
    Focus focus = Focus::eTimeline;
    bool focusShown = false; ///< the ring is drawn: the keyboard moved the focus last
    TextField titleField;
    TextField filterField;
    bool caretShown = true;

    Point pointer;
    bool pointerInside = false;
    Hit hover;
    Hit pressed;
    Drag drag;

    ControllerPlace controller; ///< asked for; the editor opens it
    bool controllerOpen = false;
    bool controllerLit = false; ///< something came from it just now

    Text message; ///< for the status line, until the next action
    ShownFrames shown;
    bool fullScreen = false; ///< asked for: the viewer's picture alone
    bool quitting = false;
    int itemToRemove = MediaBin::kNone; ///< asked for; the editor does it and clears it
    bool frameToExport = false;         ///< likewise, and so the next two
    bool screenToGrab = false;
    bool nextController = false;
    int stillType = 0; ///< of the frames that are exported, among the types that can be saved

    bool editingText() const { return focus == Focus::eTitle || focus == Focus::eFilter; }
    TextField& activeField() { return focus == Focus::eTitle ? titleField : filterField; }
    bool canUse(int button) const;
    /// Whether the keyboard can go there.
    bool canFocus(Focus place) const;
    int changes() const { return static_cast<int>(done.size()); }
};

/// A project and its pictures as they are first shown.
EditorState makeEditorState(MediaBin bin, const Text& title);

Layout layoutOf(const EditorState& state);
/// What lies at a point.
Hit hitTest(const EditorState& state, const Layout& layout, const Point& point);
/// The x at which a field's text begins, such that its caret is in view.
/// @param edges the x of every boundary between its characters, from 0
int fieldTextLeft(const Layout& layout, Focus field, std::uint32_t caret,
                  const std::vector<int>& edges);
/// The rectangle of a clip on the timeline; it may reach beyond the lanes.
Rect clipRect(const EditorState& state, const Layout& layout, const Clip& clip);
/// How long a clip of a thing of the bin is at first.
int clipLengthOf(const EditorState& state, const MediaItem& item);
/// The clip that letting go of a dragged picture here would make; its length is 0 where it cannot
/// go.
Clip clipToDrop(const EditorState& state, const Layout& layout);

} // namespace Vantor
