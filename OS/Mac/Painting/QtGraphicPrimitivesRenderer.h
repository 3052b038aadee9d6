#pragma once

#include <OS/Core/Ptr.h>
#include <OS/Primitives/iGraphicPrimitivesRenderer.h>

#include <QImage>
#include <QPainter>

class QWidget;
class QtFont;

/// Draws with the toolkit's painter on a widget or on an image.
///
/// Made for one paint and released after it: the painter is open for the renderer's whole life, and
/// a target takes one painter at a time. Used on the target's thread. Starts with antialiasing off,
/// replacing what is there (alpha too); an alpha rectangle's blending stays for what follows until
/// an image is drawn, deliberately. Without a target every operation does nothing.
class QtGraphicPrimitivesRenderer : public iGraphicPrimitivesRenderer
{
public:
    /// @param widget in its paint event, or one that may be painted on at any time
    explicit QtGraphicPrimitivesRenderer(QWidget* widget);
    /// @param image kept until the renderer goes; null draws nothing
    /// @param scale pixels of the image for each pixel of a description
    QtGraphicPrimitivesRenderer(Tq::Ptr<QImage> image, unsigned char scale);
    ~QtGraphicPrimitivesRenderer() override;
    QtGraphicPrimitivesRenderer(const QtGraphicPrimitivesRenderer&) = delete;
    QtGraphicPrimitivesRenderer& operator=(const QtGraphicPrimitivesRenderer&) = delete;

    /// Ends the drawing: lets the target go, and every later operation does nothing. For the maker
    /// of a renderer that others may keep.
    void finish();

    /// A region that is no QtRegion prints the assertion report for "rgnImpl" at
    /// "OS/Mac/QtGraphicPrimitivesRenderer line 496", and the clip stays as it was.
    void setClipRegion(Tq::Ptr<iRegion> region) override;
    void setAntialiasingEnabled(bool enabled) override;

    void renderMulti(const RectDescription* descs, unsigned int count) override;
    void renderMulti(const EllipseDescription* descs, unsigned int count) override;
    /// Every line lies one row above its y, deliberately. A dotted one ignores its width.
    void renderMulti(const LineDescription* descs, unsigned int count) override;
    /// Alignment is not used: the text starts at its position, on the baseline.
    void renderMulti(const TextDescription* descs, unsigned int count) override;
    void renderMulti(const AlphaRectDescription* descs, unsigned int count) override;
    void renderMulti(const BezierCurveDescription* descs, unsigned int count) override;
    /// Unscaled: where the two rectangles differ in size, as much as both hold, at the
    /// destination's top left. Afterwards, and for a count of 0, blending and opacity are back at
    /// replace and 1.
    void renderMulti(const ImageDescription* descs, unsigned int count) override;
    /// Nothing: only GL draws these.
    void renderMulti(const ImageDescriptionEx* descs, unsigned int count) override;

private:
    bool open(QPaintDevice* target);
    void setBlending(bool blend);
    void resetBlending();

    void soften(bool wanted);
    void softenRectangles();
    void setDottedPen(const QColor& colour);
    void setSolidPen(const QColor& colour, int width);

    void drawHighlight(const TextDescription& desc, const QtFont& font);
    void drawHalo(const TextDescription& desc, const QString& text);
    void drawUnderline(const TextDescription& desc, const QtFont& font, const QString& text);

    void drawImage(const ImageDescription& desc);
    void drawPixels(const QImage& source, const ImageDescription& desc, int sourceScale);
    bool overlapsItself(const QImage& source, const ImageDescription& desc) const;
    void moveRowsUp(const ImageDescription& desc);
    Tq::Rectangle<long long> movableArea() const;

    bool antialias_ = false;
    bool softened_ = false;   ///< the painter's present state
    bool wholePixels_ = true; ///< a pixel of a description is a whole number of the target's
    QWidget* widget_ = nullptr;
    Tq::Ptr<QImage> image_; // goes after the painter
    int scale_ = 1;
    QPainter painter_;
    bool active_ = false;
    QRegion clip_; ///< the painter's, while its clipping is on
};
