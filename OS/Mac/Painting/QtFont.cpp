#include "OS/Mac/Painting/QtFont.h"

#include "OS/Mac/Application/QtApplication.h"
#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/QtText.h"

#include <QFontDatabase>
#include <QTextLayout>

#include <algorithm>
#include <cstdlib>

namespace {

// Stands in for "Tahoma", and for any typeface that is not installed: narrow, legible
// user-interface faces.
constexpr const char* kProportional[] = {"Tahoma",      "Noto Sans", "Open Sans",
                                         "DejaVu Sans", "Cantarell", "Liberation Sans",
                                         "Nimbus Sans", "FreeSans",  "Droid Sans"};
constexpr const char* kFixedPitch[] = {"DejaVu Sans Mono", "Noto Sans Mono", "Liberation Mono",
                                       "Nimbus Mono PS",   "FreeMono",       "Courier New"};

template <std::size_t N>
QString firstInstalled(const QFontDatabase& database, const char* const (&names)[N],
                       QFontDatabase::SystemFont lastResort)
{
    for (const char* name : names)
        if (database.hasFamily(QLatin1String(name)))
            return QLatin1String(name);
    return QFontDatabase::systemFont(lastResort).family();
}

QString installedFamily(const QString& wanted, bool fixedPitch)
{
    const QFontDatabase database;
    if (!wanted.isEmpty() && database.hasFamily(wanted))
        return wanted;
    return fixedPitch ? firstInstalled(database, kFixedPitch, QFontDatabase::FixedFont)
                      : firstInstalled(database, kProportional, QFontDatabase::GeneralFont);
}

// From the scale of style sheets (100 to 900) to the toolkit's (0 to 99): the nearest named weight.
int toQtWeight(unsigned int weight)
{
    constexpr int kWeights[] = {QFont::Thin,   QFont::ExtraLight, QFont::Light,
                                QFont::Normal, QFont::Medium,     QFont::DemiBold,
                                QFont::Bold,   QFont::ExtraBold,  QFont::Black};
    return kWeights[(std::clamp(weight, 100u, 900u) + 50) / 100 - 1];
}

QFont makeFont(const LightweightString<wchar_t>& name, unsigned int size, unsigned int weight,
               unsigned int flags)
{
    const bool fixedPitch = (flags & iFont::eFixedPitch) != 0;
    QFont font(installedFamily(OSInternal::toQString(name), fixedPitch));
    font.setPixelSize(static_cast<int>(std::clamp(size, 1u, 4096u)));
    if (weight != 0)
        font.setWeight(toQtWeight(weight));
    else
        font.setBold((flags & iFont::eBold) != 0);
    font.setItalic((flags & iFont::eItalic) != 0);
    font.setUnderline((flags & iFont::eUnderlined) != 0);
    font.setFixedPitch(fixedPitch);
    return font;
}

} // namespace

Tq::Ptr<iFont> QtFont::make(const LightweightString<wchar_t>& name, unsigned int size,
                            unsigned int weight, unsigned int flags)
{
    if (!QtApplication::instance()->hasGui()) {
        OSInternal::printLine("QtFont::make() : no graphical Qt application\n");
        return {};
    }
    return new QtFont(name, size, weight, flags);
}

QtFont::QtFont(const LightweightString<wchar_t>& name, unsigned int size, unsigned int weight,
               unsigned int flags)
    : font_(makeFont(name, size, weight, flags)), metrics_(font_), style_(flags)
{
}

QtFont::QtFont(const QFont& font, std::uint32_t style) : font_(font), metrics_(font_), style_(style)
{
}

Tq::Ptr<QtFont> QtFont::copyForThread() const
{
    // Only a change takes a copy's data apart from the original's.
    QFont copy(font_);
    const bool underlined = copy.underline();
    copy.setUnderline(!underlined);
    copy.setUnderline(underlined);
    return new QtFont(copy, style_);
}

std::uint32_t QtFont::getMetrics() const
{
    const auto ascent = static_cast<std::uint32_t>(metrics_.ascent()) & 0xFFFF;
    const auto descent = static_cast<std::uint32_t>(metrics_.descent()) & 0xFFFF;
    return ascent << 16 | descent;
}

XY<int> QtFont::measure(const LightweightString<wchar_t>& text) const
{
    if (text.empty())
        return {};
    return {width(OSInternal::toQString(text)), metrics_.height()};
}

XY<int> QtFont::measure(const LightweightString<wchar_t>& text, std::vector<int>& positions) const
{
    positions = boundaries(text);
    return measure(text);
}

// One layout for the whole text, from left to right like the painter's: kerning and ligatures count
// as they are drawn. Runs written from right to left have falling positions.
std::vector<int> QtFont::boundaries(const LightweightString<wchar_t>& text) const
{
    if (text.empty())
        return {0};
    const QString wide = OSInternal::toQString(text);
    QTextLayout layout(wide, font_);
    QTextOption option;
    option.setTextDirection(Qt::LeftToRight);
    option.setWrapMode(QTextOption::NoWrap);
    layout.setTextOption(option);
    layout.beginLayout();
    const QTextLine line = layout.createLine();
    layout.endLayout();

    const int whole = width(wide);
    std::vector<int> positions{0};
    positions.reserve(text.size() + 1);
    int unit = 0; // a character outside the basic plane is two of the toolkit's
    for (const wchar_t c : text) {
        unit = std::min(unit + (c > 0xFFFF ? 2 : 1), static_cast<int>(wide.size()));
        positions.push_back(std::clamp(qRound(line.cursorToX(unit)), 0, whole));
    }
    return positions;
}

std::uint32_t QtFont::locateCharacter(const LightweightString<wchar_t>& text,
                                      eCharSeekMethod method, std::uint32_t pixel) const
{
    const std::vector<int> positions = boundaries(text);
    const auto at = static_cast<long long>(pixel);
    const auto indexOf = [&](auto found) {
        return static_cast<std::uint32_t>(found - positions.begin());
    };
    switch (method) {
    case eSeekBefore: {
        const auto after = std::find_if(positions.rbegin(), positions.rend(),
                                        [&](int position) { return position <= at; });
        return after == positions.rend() ? 0 : indexOf(after.base() - 1);
    }
    case eSeekAfter: {
        const auto found = std::find_if(positions.begin(), positions.end(),
                                        [&](int position) { return position >= at; });
        return std::min(indexOf(found), text.size());
    }
    case eSeekNearest:
        break;
    }
    return indexOf(std::min_element(positions.begin(), positions.end(), [&](int a, int b) {
        return std::abs(a - at) < std::abs(b - at);
    }));
}

std::uint32_t QtFont::getCharacterUnderPixel(const LightweightString<wchar_t>& text,
                                             std::uint32_t pixel) const
{
    const std::vector<int> positions = boundaries(text);
    const auto at = static_cast<long long>(pixel);
    for (std::uint32_t i = 0; i < text.size(); ++i) {
        const auto [left, right] = std::minmax(positions[i], positions[i + 1]);
        if (left <= at && at < right)
            return i;
    }
    return kNoCharacter;
}

void QtFont::getAvailableFonts(std::set<LightweightString<wchar_t>>& names)
{
    if (!QtApplication::instance()->hasGui())
        return;
    for (const QString& family : QFontDatabase().families())
        names.insert(OSInternal::fromQString(family));
}
