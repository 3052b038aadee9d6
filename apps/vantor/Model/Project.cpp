#include "Model/Project.h"

#include "Model/Timecode.h"

#include <algorithm>
#include <cstdlib>
#include <limits>

namespace Vantor {

namespace {

constexpr int kForever = std::numeric_limits<int>::max() / 4;

} // namespace

int Project::clipAt(Track track, int frame) const
{
    for (std::size_t i = 0; i < clips.size(); ++i)
        if (clips[i].track == track && clips[i].holds(frame))
            return static_cast<int>(i);
    return kNone;
}

int Project::clipBefore(int index) const
{
    const Clip& clip = clips[static_cast<std::size_t>(index)];
    for (std::size_t i = 0; i < clips.size(); ++i)
        if (clips[i].track == clip.track && clips[i].end() == clip.start)
            return static_cast<int>(i);
    return kNone;
}

Project::Room Project::passageOf(int index) const
{
    const Clip& clip = clips[static_cast<std::size_t>(index)];
    const int before = clip.entrance == Entrance::eCut ? kNone : clipBefore(index);
    if (before == kNone)
        return {clip.start, clip.start};
    const int half = kPassage / 2;
    return {clip.start - std::min(half, clips[static_cast<std::size_t>(before)].length / 2),
            clip.start + std::min(half, clip.length / 2)};
}

std::optional<Passage> Project::passageAt(Track track, int frame) const
{
    for (std::size_t i = 0; i < clips.size(); ++i) {
        if (clips[i].track != track || clips[i].entrance == Entrance::eCut)
            continue;
        const int index = static_cast<int>(i);
        const Room room = passageOf(index);
        if (room.from <= frame && frame < room.to)
            return Passage{clipBefore(index), index, clips[i].entrance,
                           static_cast<float>(frame - room.from) /
                               static_cast<float>(room.to - room.from)};
    }
    return std::nullopt;
}

int Project::nearestCut(Track track, int frame) const
{
    int nearest = kNone;
    for (std::size_t i = 0; i < clips.size(); ++i) {
        const int index = static_cast<int>(i);
        if (clips[i].track != track || clipBefore(index) == kNone)
            continue;
        if (nearest == kNone ||
            std::abs(clips[i].start - frame) <
                std::abs(clips[static_cast<std::size_t>(nearest)].start - frame))
            nearest = index;
    }
    return nearest;
}

int Project::contentEnd() const
{
    int end = 0;
    for (const Clip& clip : clips)
        end = std::max(end, clip.end());
    return end;
}

Project::Room Project::roomAround(int index) const
{
    const Clip& clip = clips[static_cast<std::size_t>(index)];
    Room room{0, kForever};
    for (const Clip& other : clips) {
        if (&other == &clip || other.track != clip.track)
            continue;
        if (other.end() <= clip.start)
            room.from = std::max(room.from, other.end());
        else
            room.to = std::min(room.to, other.start);
    }
    return room;
}

// Only the edges of other clips and the wanted place itself can be nearest.
int Project::nearestStart(Track track, int clipLength, int wanted, int ignored) const
{
    wanted = std::clamp(wanted, 0, kForever);
    const auto isFree = [&](int start) {
        if (start < 0)
            return false;
        for (std::size_t i = 0; i < clips.size(); ++i)
            if (static_cast<int>(i) != ignored && clips[i].track == track &&
                start < clips[i].end() && clips[i].start < start + clipLength)
                return false;
        return true;
    };
    if (isFree(wanted))
        return wanted;
    int best = contentEnd();
    for (const Clip& clip : clips) {
        if (clip.track != track)
            continue;
        for (int candidate : {clip.end(), clip.start - clipLength})
            if (isFree(candidate) && std::abs(candidate - wanted) < std::abs(best - wanted))
                best = candidate;
    }
    return best;
}

void Project::move(int index, int start)
{
    Clip& clip = clips[static_cast<std::size_t>(index)];
    clip.start = nearestStart(clip.track, clip.length, start, index);
    length = std::max(length, clip.end());
}

void Project::trimStart(int index, int start)
{
    const Room room = roomAround(index);
    Clip& clip = clips[static_cast<std::size_t>(index)];
    const int end = clip.end();
    const int before = clip.start;
    clip.start = std::clamp(start, room.from, std::max(room.from, end - kShortest));
    clip.length = end - clip.start;
    clip.offset += clip.start - before;
}

void Project::trimEnd(int index, int end)
{
    const Room room = roomAround(index);
    Clip& clip = clips[static_cast<std::size_t>(index)];
    clip.length = std::clamp(end, clip.start + kShortest, room.to) - clip.start;
    length = std::max(length, clip.end());
}

int Project::freeStart(const Clip& clip) const
{
    return nearestStart(clip.track, clip.length, clip.start, kNone);
}

int Project::insert(Clip clip)
{
    clip.length = std::max(clip.length, kShortest);
    clip.start = freeStart(clip);
    length = std::max(length, clip.end());
    clips.push_back(std::move(clip));
    return static_cast<int>(clips.size()) - 1;
}

void Project::remove(int index)
{
    clips.erase(clips.begin() + index);
}

int Project::nextEdge(int frame) const
{
    int next = std::max(length - 1, 0);
    for (const Clip& clip : clips)
        for (int edge : {clip.start, clip.end()})
            if (edge > frame)
                next = std::min(next, edge);
    return std::max(next, frame);
}

int Project::previousEdge(int frame) const
{
    int previous = 0;
    for (const Clip& clip : clips)
        for (int edge : {clip.start, clip.end()})
            if (edge < frame)
                previous = std::max(previous, edge);
    return previous;
}

float valueAt(const Clip& clip, int frame)
{
    if (clip.keys.empty())
        return 0.0f;
    if (frame <= clip.keys.front().frame)
        return clip.keys.front().value;
    for (std::size_t i = 1; i < clip.keys.size(); ++i) {
        const Keyframe& from = clip.keys[i - 1];
        const Keyframe& to = clip.keys[i];
        if (frame <= to.frame && to.frame > from.frame) {
            // The curve drawn between two keys is level at both: the same cubic.
            const float t =
                static_cast<float>(frame - from.frame) / static_cast<float>(to.frame - from.frame);
            return from.value + (to.value - from.value) * t * t * (3.0f - 2.0f * t);
        }
    }
    return clip.keys.back().value;
}

namespace {

Project sampleProject()
{
    using Timecode::fromSeconds;
    Project project;
    project.title = L"Harbour at Dawn";
    project.length = fromSeconds(31);
    const auto add = [&](Track track, int start, int end, const wchar_t* name) -> Clip& {
        project.clips.push_back({track, start, end - start, name, Effect::eWarm, {}, 0});
        return project.clips.back();
    };
    add(Track::eTitle, fromSeconds(6, 7), fromSeconds(10, 18), L"Harbour");
    add(Track::eOverlay, fromSeconds(14), fromSeconds(19), L"chart.tif");
    add(Track::ePicture, 0, fromSeconds(7, 12), L"dawn.jpg");
    add(Track::ePicture, fromSeconds(7, 12), fromSeconds(14), L"pier.jpg").entrance =
        Entrance::eDissolve;
    add(Track::ePicture, fromSeconds(15), fromSeconds(23), L"quay.bmp");
    add(Track::eEffect, 0, fromSeconds(7, 12), L"warm").keys = {{6, 0.1f}, {93, 0.8f}, {180, 0.2f}};
    Clip& fade = add(Track::eEffect, fromSeconds(7, 12), fromSeconds(19), L"fade");
    fade.effect = Effect::eFade;
    fade.keys = {{6, 0.1f}, {143, 0.8f}, {280, 0.2f}};
    return project;
}

} // namespace

Project makeProject(const std::vector<Material>& materials, const Text& title)
{
    const auto find = [&](const wchar_t* name) {
        return std::find_if(materials.begin(), materials.end(),
                            [&](const Material& material) { return material.name == name; });
    };
    const auto has = [&](const wchar_t* name) { return find(name) != materials.end(); };
    if (has(L"dawn.jpg") && has(L"pier.jpg") && has(L"quay.bmp") && has(L"chart.tif")) {
        Project project = sampleProject();
        if (const auto clip = find(L"Test clip"); clip != materials.end() && clip->frames > 0)
            project.clips.push_back({Track::ePicture,
                                     Timecode::fromSeconds(23),
                                     std::min(clip->frames, Timecode::fromSeconds(8)),
                                     clip->name,
                                     Effect::eWarm,
                                     {},
                                     0,
                                     Entrance::ePageTurn});
        return project;
    }

    Project project;
    project.title = title.empty() ? Text(L"Untitled") : title;
    const std::size_t count = std::min<std::size_t>(materials.size(), 60);
    for (std::size_t i = 0; i < count; ++i) {
        const Material& material = materials[i];
        if (material.isTest && materials.size() > 1)
            continue;
        const int frames = material.frames > 0 ? material.frames : Timecode::fromSeconds(4);
        project.clips.push_back({Track::ePicture,
                                 project.contentEnd(),
                                 std::max(frames, Project::kShortest),
                                 material.name,
                                 Effect::eWarm,
                                 {},
                                 0});
    }
    project.length = std::max(project.contentEnd(), Timecode::fromSeconds(10));
    return project;
}

} // namespace Vantor
