#pragma once

#include <OS/Painting/iRegion.h>

#include <QRegion>

#include <vector>

/// iRegion on the toolkit's region.
class QtRegion final : public iRegion
{
public:
    /// How many rectangles the vector form takes in.
    static constexpr std::size_t kMaxSize = 16;

    explicit QtRegion(const QRegion& region);
    explicit QtRegion(const Tq::Rectangle<int>& rectangle);
    /// The rectangles together; they may overlap. 16 or more print the assertion report for
    /// "data.size() < kMaxSize" at "OS/Mac/QtRegion line 39", and the first 16 are used.
    explicit QtRegion(const std::vector<Tq::Rectangle<int>>& data);

    Tq::Rectangle<int> getBounds() const override { return bounds_; }
    std::uint32_t getUniqueID() const override { return uniqueID_; }
    bool isRectangular() const override;
    bool contains(const XY<int>& point) const override;
    void translate(int dx, int dy) override;
    Tq::Ptr<iRegion> clone() const override;

    const QRegion& region() const { return region_; }

private:
    void calcBBX();

    Tq::Rectangle<int> bounds_;
    std::uint32_t uniqueID_;
    QRegion region_;
};
