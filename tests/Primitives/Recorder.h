#pragma once

#include <OS/Primitives/GraphicPrimitivesList.h>

#include <string>
#include <vector>

/// A processor that remembers which calls it got.
class Recorder final : public GraphicPrimitivesList::iPrimitivesProcessor
{
public:
    struct Call
    {
        std::string type;
        unsigned int count;
        const iRegion* clip;

        friend bool operator==(const Call&, const Call&) = default;
    };

    void process(const RectDescription* d, unsigned int n, const Clip& c) override
    {
        rects.insert(rects.end(), d, d + n);
        note("Rect", n, c);
    }
    void process(const EllipseDescription*, unsigned int n, const Clip& c) override
    {
        note("Ellipse", n, c);
    }
    void process(const LineDescription* d, unsigned int n, const Clip& c) override
    {
        lines.insert(lines.end(), d, d + n);
        note("Line", n, c);
    }
    void process(const TextDescription* d, unsigned int n, const Clip& c) override
    {
        for (unsigned int i = 0; i < n; ++i)
            texts.push_back(d[i].text_);
        note("Text", n, c);
    }
    void process(const AlphaRectDescription*, unsigned int n, const Clip& c) override
    {
        note("AlphaRect", n, c);
    }
    void process(const BezierCurveDescription*, unsigned int n, const Clip& c) override
    {
        note("Bezier", n, c);
    }
    void process(const ImageDescription*, unsigned int n, const Clip& c) override
    {
        note("Image", n, c);
    }
    void process(const ImageDescriptionEx*, unsigned int n, const Clip& c) override
    {
        note("ImageEx", n, c);
    }

    std::vector<Call> calls;
    std::vector<RectDescription> rects;
    std::vector<LineDescription> lines;
    std::vector<LightweightString<wchar_t>> texts;

private:
    void note(const char* type, unsigned int count, const Clip& clip)
    {
        calls.push_back({type, count, clip.get()});
    }
};

inline void PrintTo(const Recorder::Call& call, std::ostream* out)
{
    *out << call.type << " x " << call.count << (call.clip ? " clipped" : "");
}

/// A region for counting references.
class CountedRegion final : public iRegion
{
public:
    Tq::Rectangle<int> getBounds() const override { return {}; }
    std::uint32_t getUniqueID() const override { return 0; }
    bool isRectangular() const override { return false; }
    bool contains(const XY<int>&) const override { return false; }
    void translate(int, int) override {}
    Tq::Ptr<iRegion> clone() const override { return new CountedRegion; }
};

/// A font in which every character is ten pixels wide, with an ascent of 12 and a descent of 4.
class TenPixelFont final : public iFont
{
public:
    std::uint32_t getMetrics() const override { return 12u << 16 | 4u; }
    std::uint32_t getStyle() const override { return 0; }
    XY<int> measure(const LightweightString<wchar_t>& text) const override
    {
        return {static_cast<int>(text.size()) * 10, 16};
    }
    XY<int> measure(const LightweightString<wchar_t>& text, std::vector<int>&) const override
    {
        return measure(text);
    }
    std::uint32_t locateCharacter(const LightweightString<wchar_t>&, eCharSeekMethod,
                                  std::uint32_t) const override
    {
        return 0;
    }
    std::uint32_t getCharacterUnderPixel(const LightweightString<wchar_t>&,
                                         std::uint32_t) const override
    {
        return 0;
    }
};
