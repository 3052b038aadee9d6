#pragma once

#include "Model/Text.h"
#include "Model/ViewerChoices.h"

#include <array>

namespace Vantor {

/// What the user or the text decides about the layout.
struct LayoutChoices
{
    int binWidth = 0;        ///< 0: chosen by the window's size
    int timelineHeight = 0;  ///< 0: chosen by the window's size
    int titleWidth = 126;    ///< of the project's title as drawn
    double ratio = 1.0;      ///< device pixels for each logical one
    bool effects = true;     ///< the effects' panel is open
    bool scopes = true;      ///< the scopes' panel is open
    int sliders = 0;         ///< of the effect chosen
    int sliderScroll = 0;    ///< pixels
    int troubleLines = 0;    ///< about the effect chosen
    bool techniques = false; ///< there are several to choose from
    ViewerChoices viewer = {};
};

/// The viewer's switches, from the left.
enum class ViewerChip : int
{
    eLoop,
    eSafeAreas,
    eTimeCode,
    eFrameNumber,
    eRate,
    eZoom,
    eEffects,
    eScopes,
    eFullScreen
};

/// The buttons at the top of the effects' panel.
enum class EffectButton : int
{
    ePrevious,
    eNext,
    ePreviousTechnique,
    eNextTechnique,
    eReset
};

/// Where everything is: a pure function of the window's size. Logical pixels.
///
/// Holds from kSmallest up; a smaller window shows the top left part of the smallest layout.
struct Layout
{
    static constexpr int kTracks = 4;
    static constexpr int kButtons = 3;
    static constexpr int kChips = 9;
    static constexpr int kEffectButtons = 5;
    static constexpr int kTroubleLine = 14;
    static inline const Point kSmallest{960, 600};
    static inline const Point kLargest{7680, 4320};

    Point size;
    Rect topBar;
    Rect title;      ///< of the project, to be clicked and edited
    Rect controller; ///< what drives the playhead, to be clicked and changed

    Rect bin;
    Rect binHeader;
    Rect filter;
    Rect tiles; ///< what the tiles scroll in
    int columns = 1;
    int tileWidth = 0;
    int thumbHeight = 0;

    Rect viewer;
    Rect viewerHeader;
    std::array<Rect, kChips> chips; ///< the viewer's switches, in the order of ViewerChip
    Rect screen;                    ///< between header and transport: what the viewer covers
    Rect stage;                     ///< what the picture is fitted into
    Rect picture;                   ///< zoomed it may reach beyond the screen
    Rect transport;
    std::array<Rect, kButtons> buttons; ///< backwards, stop, forwards

    Rect effects; ///< the panel beside the viewer; without area while it is closed
    Rect effectsHeader;
    Rect effectName;
    Rect techniqueName;                             ///< without area where the effect has but one
    std::array<Rect, kEffectButtons> effectButtons; ///< in the order of EffectButton
    Rect sliders;                                   ///< what the sliders scroll in
    Rect trouble;                                   ///< what is wrong with the effect

    Rect scopes; ///< the panel beside the timeline; without area while it is closed
    Rect scopesHeader;
    Rect waveform;
    Rect vectorscope;
    Rect histogram;

    Rect timeline;
    Rect ruler; ///< as wide as the panel
    Rect lanes; ///< all lanes, and the ruler's ticks above them, lie in its width
    std::array<Rect, kTracks> heads;
    std::array<Rect, kTracks> tracks;

    Rect binEdge;      ///< between the bin and the viewer
    Rect timelineEdge; ///< above the timeline
    Rect status;

    /// A tile of the bin by its place among the visible ones.
    Rect tile(int place, int scroll) const;
    Rect thumb(const Rect& tile) const;
    /// How far the bin can be scrolled with so many tiles.
    int scrollRange(int tileCount) const;
    int rowHeight() const;
    /// A slider of the effects' panel, with its words.
    Rect slider(int index) const;
    /// What the slider's handle moves along.
    static Rect groove(const Rect& slider);
    int sliderScrollRange() const;

    int sliderCount = 0;
    int sliderScroll = 0;
};

Layout makeLayout(const Point& size, const LayoutChoices& choices);

} // namespace Vantor
