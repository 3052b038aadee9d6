#pragma once

#include <OS/OpenGL/iGPUImage.h>
#include <OS/Painting/iFont.h>
#include <OS/Painting/iHostImage.h>
#include <OS/Primitives/TextDescription.h>

class TextImageCache;

/// A font for drawing with GL: a host font that measures, and pictures of texts on the GPU.
///
/// A text's picture is plain: white on opaque black, without highlight, halo and underline, which
/// are drawn around it. It is as wide as the text advances and as high as a line, deliberately:
/// what glyphs draw outside of that is cut off. Pictures stay in one cache for all fonts (see
/// TextImageCache), which holds the fonts too.
///
/// Measuring belongs to the thread that the host font belongs to. What renders belongs under the GL
/// lock, on any thread: it uses fonts of its own.
class OpenGLFontBase : public iFont
{
public:
    ~OpenGLFontBase() override = default;
    OpenGLFontBase(const OpenGLFontBase&) = delete;
    OpenGLFontBase& operator=(const OpenGLFontBase&) = delete;

    std::uint32_t getMetrics() const override { return host_->getMetrics(); }
    std::uint32_t getStyle() const override { return host_->getStyle(); }
    XY<int> measure(const LightweightString<wchar_t>& text) const override
    {
        return host_->measure(text);
    }
    XY<int> measure(const LightweightString<wchar_t>& text,
                    std::vector<int>& positions) const override
    {
        return host_->measure(text, positions);
    }
    std::uint32_t locateCharacter(const LightweightString<wchar_t>& text, eCharSeekMethod method,
                                  std::uint32_t pixel) const override
    {
        return host_->locateCharacter(text, method, pixel);
    }
    std::uint32_t getCharacterUnderPixel(const LightweightString<wchar_t>& text,
                                         std::uint32_t pixel) const override
    {
        return host_->getCharacterUnderPixel(text, pixel);
    }

    /// Draws a text in main memory, as it is described.
    /// @return null where there is nothing to draw: the text measures 0 both ways
    virtual Tq::Ptr<iHostImage> renderHostText(const TextDescription& desc) = 0;

    /// A text's picture, from the cache or made. Place, colours, style and highlight do not matter.
    /// @param ratio the target's pixels for each of the description; the cache keeps a text for one
    /// ratio at a time
    /// @return null where there is nothing to draw, or the GPU takes no such picture
    Tq::Ptr<iGPUImage> renderText(const TextDescription& desc, double ratio = 1.0);
    /// Uploads a text's picture and keeps it. @param key as renderText makes it
    Tq::Ptr<iGPUImage> copyToGPU(const TextDescription& key, const Tq::Ptr<iHostImage>& host);

    /// Where a picture's baseline is, in pixels of a description from its top: the ascent, or a
    /// little more, so that it lies on the edge of a pixel. From any thread.
    int baselineAt(double ratio) const;
    /// The host font's ascent and descent, from any thread.
    int ascent() const { return static_cast<int>(metrics_ >> 16); }
    int descent() const { return static_cast<int>(metrics_ & 0xFFFF); }
    /// Measures as this one does, for the calling thread alone.
    Tq::Ptr<iFont> hostFontForThread() const;

    /// Empties the text-image cache.
    static void shutdown();
    /// Under the GL lock.
    static TextImageCache& cache();

protected:
    /// @param host not null
    explicit OpenGLFontBase(const Tq::Ptr<iFont>& host);

    /// What is rendered is for targets of so many pixels for each of a description.
    double ratio() const { return ratio_; }

private:
    TextDescription keyOf(const TextDescription& desc);

    Tq::Ptr<iFont> host_;
    std::uint32_t metrics_;
    double ratio_ = 1.0;
};
