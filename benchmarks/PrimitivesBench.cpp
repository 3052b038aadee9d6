// Recording, replaying and releasing rectangles: the list against a vector of variants and against
// one shared virtual object for each primitive. Costs are nanoseconds for each rectangle, all three
// steps together.
#include "support/PairedRuns.h"

#include <OS/Primitives/GraphicPrimitivesList.h>

#include <memory>
#include <variant>
#include <vector>

namespace {

constexpr int kLists = 50;
constexpr int kRectangles = 20'000;
constexpr double kUnits = double(kLists) * kRectangles;

struct Region final : iRegion
{
    Tq::Rectangle<int> getBounds() const override { return {0, 0, 1920, 1080}; }
    std::uint32_t getUniqueID() const override { return 1; }
    bool isRectangular() const override { return true; }
    bool contains(const XY<int>&) const override { return true; }
    void translate(int, int) override {}
    Tq::Ptr<iRegion> clone() const override { return new Region; }
};

// Reads what a renderer would: the rectangle and its colours.
struct Reader final : GraphicPrimitivesList::iPrimitivesProcessor
{
    template <class T>
    void skip(const T*, unsigned int count)
    {
        sum += count;
    }
    void process(const RectDescription* descs, unsigned int count, const Clip& clip) override
    {
        sum += clip ? 1 : 0;
        for (unsigned int i = 0; i < count; ++i)
            sum += descs[i].rect_.left + descs[i].rect_.bottom +
                   static_cast<int>(descs[i].topColour_.red);
    }
    void process(const EllipseDescription* d, unsigned int n, const Clip&) override { skip(d, n); }
    void process(const LineDescription* d, unsigned int n, const Clip&) override { skip(d, n); }
    void process(const TextDescription* d, unsigned int n, const Clip&) override { skip(d, n); }
    void process(const AlphaRectDescription* d, unsigned int n, const Clip&) override
    {
        skip(d, n);
    }
    void process(const BezierCurveDescription* d, unsigned int n, const Clip&) override
    {
        skip(d, n);
    }
    void process(const ImageDescription* d, unsigned int n, const Clip&) override { skip(d, n); }
    void process(const ImageDescriptionEx* d, unsigned int n, const Clip&) override { skip(d, n); }

    long long sum = 0;
};

// The peers' values: the same numbers without bases, no clip region, nothing shared.
struct Colour
{
    float red, green, blue, alpha;
};
struct PlainRect
{
    Tq::Rectangle<int> rect;
    Colour top, bottom;
};
struct PlainEllipse
{
    Tq::Rectangle<int> rect;
    Colour fill, line;
    int style, width, start, end;
};
struct PlainLine
{
    int fromX, fromY, toX, toY, width;
    Colour colour;
};
using Variant = std::variant<PlainRect, PlainEllipse, PlainLine>;

struct VirtualPrimitive
{
    virtual ~VirtualPrimitive() = default;
    virtual void draw(long long& sum) const = 0;
};
struct VirtualRect final : VirtualPrimitive
{
    VirtualRect(const RectDescription& desc_, const Tq::Ptr<iRegion>& clip_)
        : desc(desc_), clip(clip_)
    {
    }
    void draw(long long& sum) const override
    {
        sum += desc.rect_.left + desc.rect_.bottom + static_cast<int>(desc.topColour_.red);
    }
    RectDescription desc;
    Tq::Ptr<iRegion> clip;
};

std::vector<RectDescription> makeRectangles(unsigned int count)
{
    std::vector<RectDescription> result(count);
    for (unsigned int i = 0; i < count; ++i) {
        const int at = static_cast<int>(i);
        result[i].rect_ = {at, at, at + 10, at + 10};
        result[i].topColour_ = {0.5f, 0.25f, 1.0f};
    }
    return result;
}

double listCost(unsigned int run, bool replayOnly)
{
    const std::vector<RectDescription> rects = makeRectangles(run);
    const Tq::Ptr<iRegion> clip = new Region;
    Reader reader;
    double replay = 0.0;
    const double all = Bench::timed(kUnits, [&] {
        for (int l = 0; l < kLists; ++l) {
            const Tq::Ptr<GraphicPrimitivesList> list = new GraphicPrimitivesList;
            for (unsigned int i = 0; i < kRectangles; i += run)
                list->push_back(rects.data(), run, clip);
            if (replayOnly)
                replay += Bench::timed(kUnits, [&] { list->process(reader); });
            else
                list->process(reader);
        }
    });
    Bench::keep(reader.sum);
    return replayOnly ? replay : all;
}

double variantCost(unsigned int run)
{
    const std::vector<PlainRect> rects(run,
                                       PlainRect{{1, 2, 11, 12}, {0.5f, 0.25f, 1.0f, 1.0f}, {}});
    long long sum = 0;
    const double cost = Bench::timed(kUnits, [&] {
        for (int l = 0; l < kLists; ++l) {
            std::vector<Variant> list;
            for (unsigned int i = 0; i < kRectangles; i += run)
                for (const PlainRect& rect : rects)
                    list.emplace_back(rect);
            for (const Variant& item : list)
                std::visit(
                    [&](const auto& plain) {
                        if constexpr (requires { plain.top; })
                            sum += plain.rect.left + plain.rect.bottom +
                                   static_cast<int>(plain.top.red);
                        else
                            sum += 1;
                    },
                    item);
        }
    });
    Bench::keep(sum);
    return cost;
}

double objectCost(unsigned int run)
{
    const std::vector<RectDescription> rects = makeRectangles(run);
    const Tq::Ptr<iRegion> clip = new Region;
    long long sum = 0;
    const double cost = Bench::timed(kUnits, [&] {
        for (int l = 0; l < kLists; ++l) {
            std::vector<std::unique_ptr<VirtualPrimitive>> list;
            for (unsigned int i = 0; i < kRectangles; i += run)
                for (const RectDescription& rect : rects)
                    list.push_back(std::make_unique<VirtualRect>(rect, clip));
            for (const auto& item : list)
                item->draw(sum);
        }
    });
    Bench::keep(sum);
    return cost;
}

// The floor of a replay: a plain loop over arrays of descriptions.
double loopCost(unsigned int run)
{
    std::vector<std::vector<RectDescription>> arrays(kRectangles / run, makeRectangles(run));
    long long sum = 0;
    const double cost = Bench::timed(kUnits, [&] {
        for (int l = 0; l < kLists; ++l)
            for (const auto& array : arrays)
                for (const RectDescription& desc : array)
                    sum +=
                        desc.rect_.left + desc.rect_.bottom + static_cast<int>(desc.topColour_.red);
    });
    Bench::keep(sum);
    return cost;
}

} // namespace

int main()
{
    Bench::printHeader("Primitives: record, replay, release (one rectangle)");
    struct Case
    {
        unsigned int run;
        double variantAim, objectAim;
    };
    for (const Case& c : {Case{1, 2.2, 0.4}, Case{16, 0.85, 0.0}, Case{1000, 0.85, 0.0}}) {
        Bench::compare("runs of " + std::to_string(c.run),
                       {{"list", [&] { return listCost(c.run, false); }},
                        {"variant vector", [&] { return variantCost(c.run); }},
                        {"virtual object", [&] { return objectCost(c.run); }}},
                       {{{"variant vector"}, c.variantAim}, {{"virtual object"}, c.objectAim}});
    }
    Bench::compare("replay, runs of 1000",
                   {{"list", [] { return listCost(1000, true); }},
                    {"plain loop", [] { return loopCost(1000); }}},
                   {{{"plain loop"}, 1.2}});
}
