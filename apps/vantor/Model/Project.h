#pragma once

#include "Model/Text.h"

#include <array>
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

    int end() const { return start + length; }
    bool holds(int frame) const { return start <= frame && frame < end(); }

    friend bool operator==(const Clip&, const Clip&) = default;
};

/// Everything that is edited: plain data, copied for undo.
struct Project
{
    static constexpr int kShortest = 5; ///< frames that a clip has at least
    static constexpr int kNone = -1;

    Text title = L"Untitled";
    int length = 0; ///< frames; at least the end of the last clip
    std::vector<Clip> clips;

    /// The index of the clip at a frame of a track, or kNone.
    int clipAt(Track track, int frame) const;
    /// The end of the last clip.
    int contentEnd() const;
    /// The frames between which a clip can be moved and stretched: its neighbours on the track.
    struct Room
    {
        int from;
        int to;
    };
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
