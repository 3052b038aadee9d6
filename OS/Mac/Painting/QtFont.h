#pragma once

#include <OS/Painting/iFont.h>

#include <OS/Core/Ptr.h>

#include <QFont>
#include <QFontMetrics>

#include <set>

class QTextLine;

/// iFont on the toolkit's font. Measures agree with what QPainter::drawText puts on the screen.
class QtFont final : public iFont
{
public:
    /// A font; makes the Qt application object where there is none.
    ///
    /// @param name a typeface; one that is not installed becomes the best of a list of known ones
    /// @param size pixels, 1 to 4096; others are brought into that range
    /// @param weight 100 to 900, 400 is normal; 0 takes it from the flags
    /// @param flags iFont::eStyle bits
    /// @return null, after "QtFont::make() : no graphical Qt application\n", where fonts cannot be
    /// had
    static Tq::Ptr<iFont> make(const LightweightString<wchar_t>& name, unsigned int size,
                               unsigned int weight, unsigned int flags);

    /// As make, where the Qt application object is known to exist.
    QtFont(const LightweightString<wchar_t>& name, unsigned int size, unsigned int weight,
           unsigned int flags);

    /// The same font with nothing shared, for another thread: the toolkit's font objects, copies of
    /// one included, are not to be used by two threads at a time. From any thread.
    Tq::Ptr<QtFont> copyForThread() const;

    std::uint32_t getMetrics() const override;
    std::uint32_t getStyle() const override { return style_; }
    XY<int> measure(const LightweightString<wchar_t>& text) const override;
    XY<int> measure(const LightweightString<wchar_t>& text,
                    std::vector<int>& positions) const override;
    std::uint32_t locateCharacter(const LightweightString<wchar_t>& text, eCharSeekMethod method,
                                  std::uint32_t pixel) const override;
    std::uint32_t getCharacterUnderPixel(const LightweightString<wchar_t>& text,
                                         std::uint32_t pixel) const override;

    const QFont& font() const { return font_; }
    const QFontMetrics& metrics() const { return metrics_; }
    /// Advance width in pixels.
    int width(const QString& text) const { return metrics_.horizontalAdvance(text); }

    /// Adds the names of the installed typefaces.
    static void getAvailableFonts(std::set<LightweightString<wchar_t>>& names);
    /// "Tahoma": what the application asks for when it has no wish of its own.
    static LightweightString<wchar_t> getDefaultFont() { return L"Tahoma"; }

private:
    QtFont(const QFont& font, std::uint32_t style);
    std::vector<int> boundaries(const LightweightString<wchar_t>& text) const;

    QFont font_;
    QFontMetrics metrics_;
    std::uint32_t style_;
};
