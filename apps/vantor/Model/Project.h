#pragma once

#include "Model/Text.h"

#include <array>
#include <optional>
#include <vector>

namespace Vantor {

/// The four tracks, from the top of the timeline down.
enum class Track : int
{
    eTitle = 0,
    eOverlay = 1,
    ePicture = 2,
    eEffect = 3
};
constexpr int kTrackCount = 4;

/// A value of an effect at a moment of its clip.
struct Keyframe
{
    int frame = 0;      ///< from the clip's start
    float value = 0.0f; ///< 0 to 1

    friend bool operator==(const Keyframe&, const Keyframe&) = default;
};

/// What an effect clip does to the picture.
enum class Effect : int
{
    eWarm,
    eFade
};

/// How a picture takes the place of the one before it on its track.
enum class Entrance : int
{
    eCut,
    eDissolve,
    eWipe,
    ePageTurn
};
constexpr int kEntrances = 4;

/// A stretch of time on one track. Clips of a track never overlap.
struct Clip
{
    Track track = Track::ePicture;
    int start = 0;  ///< frames from the start of the project
    int length = 1; ///< frames, at least Project::kShortest
    Text name;      ///< a picture's file name, a title's words, or an effect's name
    Effect effect = Effect::eWarm;
    std::vector<Keyframe> keys; ///< of an effect, in order of time
    int offset = 0;             ///< frames of what moves that lie before the start; may be negative
    Entrance entrance = Entrance::eCut; ///< where the clip before it ends just at its start

    int end() const { return start + length; }
    bool holds(int frame) const { return start <= frame && frame < end(); }

    friend bool operator==(const Clip&, const Clip&) = default;
};

/// Two clips in the middle of a transition.
struct Passage
{
    int from; ///< the clip that goes; an index
    int to;   ///< the clip that comes
    Entrance kind;
    float progress; ///< 0 at the first frame's start, below 1
};

/// Everything that is edited: plain data, copied for undo.
struct Project
{
    static constexpr int kShortest = 5; ///< frames that a clip has at least
    static constexpr int kNone = -1;
    static constexpr int kPassage = 24; ///< frames of a transition, where both clips have them

    Text title = L"Untitled";
    int length = 0; ///< frames; at least the end of the last clip
    std::vector<Clip> clips;

    /// The index of the clip at a frame of a track, or kNone.
    int clipAt(Track track, int frame) const;
    /// The clip that ends just where a clip starts, on the same track, or kNone.
    int clipBefore(int clip) const;
    /// The frames in which a clip comes in by a transition; none for a cut, and where no clip
    /// stands before it. Half of them lie before its start, as far as both clips reach.
    struct Room
    {
        int from;
        int to;
    };
    Room passageOf(int clip) const;
    /// What transition a track is in at a frame.
    std::optional<Passage> passageAt(Track track, int frame) const;
    /// The clip of a track whose start is nearest to a frame and stands at the end of another, or
    /// kNone.
    int nearestCut(Track track, int frame) const;
    /// The end of the last clip.
    int contentEnd() const;
    /// The frames between which a clip can be moved and stretched: its neighbours on the track.
    Room roomAround(int clip) const;

    /// Moves a clip to where it was asked to go, or to the nearest free place of its track.
    void move(int clip, int start);
    /// Moves a clip's first frame; its end stays, and so does each picture of what moves.
    void trimStart(int clip, int start);
    /// Moves a clip's end; its start stays.
    void trimEnd(int clip, int end);
    /// The free place for a clip that is nearest to its start.
    int freeStart(const Clip& clip) const;
    /// Puts a clip where there is room for it at or nearest to its start. @return its index
    int insert(Clip clip);
    void remove(int clip);

    /// The next or the previous edge of any clip, or the start or end of the project.
    int nextEdge(int frame) const;
    int previousEdge(int frame) const;

    friend bool operator==(const Project&, const Project&) = default;

private:
    int nearestStart(Track track, int length, int wanted, int ignored) const;
};

/// The value of an effect at a frame from its clip's start: smooth between the keys, level outside.
float valueAt(const Clip& clip, int frame);

/// What a project is made of.
struct Material
{
    Text name;
    int frames = 0;      ///< 0: a picture
    bool isTest = false; ///< used where the sample project has it, or where there is nothing else
};

/// A project for the contents of a bin: the sample project where they are the sample's, else one
/// after the other.
Project makeProject(const std::vector<Material>& materials, const Text& title);

} // namespace Vantor
