#include "OS/Mac/Windowing/StatusWindowWidget.h"

#include "OS/Mac/Painting/QtFont.h"
#include "OS/Mac/Windowing/QuitRequest.h"

#include <QCloseEvent>
#include <QPainter>
#include <QScreen>
#include <QTimerEvent>
#include <QWindow>
#include <algorithm>
#include <cmath>

namespace {

// Logical pixels, on a grid of four.
constexpr int kWidth = 440;
constexpr int kMargin = 20;
constexpr int kRow = 20;
constexpr int kBarAbove = 12;
constexpr int kBarHeight = 4;
constexpr int kPercentWidth = 48;
constexpr int kMostRows = 8;
constexpr unsigned int kTextSize = 12;
constexpr unsigned int kTitleSize = 13;

constexpr int kWanderStepMs = 33;
constexpr double kWanderPeriodMs = 1600.0;
constexpr double kWanderWidth = 0.3; // of the bar

const QColor kPanel(0x1B, 0x1E, 0x25);
const QColor kEdge(0x3A, 0x40, 0x4C);
const QColor kText(0xD7, 0xDA, 0xE0);
const QColor kDimText(0x9A, 0xA2, 0xAF);
const QColor kTrack(0x2B, 0x30, 0x3A);
const QColor kFill(0x4C, 0x8D, 0xFF);

} // namespace

StatusWindowWidget::StatusWindowWidget()
    : QWidget(nullptr, Qt::Dialog | Qt::FramelessWindowHint),
      titleFont_(new QtFont(QtFont::getDefaultFont(), kTitleSize, 0, iFont::eBold)),
      font_(new QtFont(QtFont::getDefaultFont(), kTextSize, 0, iFont::ePlain))
{
    setAttribute(Qt::WA_OpaquePaintEvent);
    setAttribute(Qt::WA_ShowWithoutActivating);
    setAttribute(Qt::WA_QuitOnClose, false);
    setFocusPolicy(Qt::NoFocus);
    clock_.start();
    fitHeight();
}

StatusWindowWidget::~StatusWindowWidget() = default;

void StatusWindowWidget::setTitle(const QString& title)
{
    title_ = title;
    setWindowTitle(title);
    fitHeight();
    repaint();
}

void StatusWindowWidget::setMessage(const QString& message)
{
    message_ = message.isEmpty() ? QStringList() : message.split(QLatin1Char('\n'));
    fitHeight();
    repaint();
}

void StatusWindowWidget::setProgress(float fraction)
{
    progress_ = fraction >= 0.0f ? std::min(fraction, 1.0f) : -1.0f;
    followProgress();
    repaint();
}

void StatusWindowWidget::placeOver(const QWidget* other)
{
    const bool seen = other && other->isVisible() && !other->isMinimized();
    const QRect area = seen ? other->geometry() : screen()->availableGeometry();
    move(area.center() - rect().center());
    winId(); // has the window made, so that it can be tied to the other: it then stays above it
    windowHandle()->setTransientParent(seen ? other->windowHandle() : nullptr);
}

int StatusWindowWidget::textRows() const
{
    const int rows = std::min(static_cast<int>(message_.size()), kMostRows);
    return std::max(rows + (title_.isEmpty() ? 0 : 1), 1);
}

// The middle of the window stays where it is.
void StatusWindowWidget::fitHeight()
{
    const int height = kMargin + textRows() * kRow + kBarAbove + kBarHeight + kMargin;
    if (height == this->height() && width() == kWidth)
        return;
    const QPoint middle = geometry().center();
    setFixedSize(kWidth, height);
    if (isVisible())
        move(middle - rect().center());
}

void StatusWindowWidget::followProgress()
{
    if (isVisible() && !endIsKnown())
        wandering_.start(kWanderStepMs, this);
    else
        wandering_.stop();
}

void StatusWindowWidget::timerEvent(QTimerEvent* event)
{
    if (event->timerId() == wandering_.timerId())
        update();
}

void StatusWindowWidget::showEvent(QShowEvent*)
{
    followProgress();
}

void StatusWindowWidget::hideEvent(QHideEvent*)
{
    followProgress();
}

void StatusWindowWidget::closeEvent(QCloseEvent* event)
{
    event->setAccepted(QuitRequest::isClosingWindows());
}

void StatusWindowWidget::paintEvent(QPaintEvent*)
{
    QPainter painter(this);
    // Whole device pixels, so that the edge is as wide on every side at any scale.
    const double edge = std::max(std::floor(devicePixelRatioF()), 1.0) / devicePixelRatioF();
    painter.fillRect(rect(), kEdge);
    painter.fillRect(QRectF(rect()).adjusted(edge, edge, -edge, -edge), kPanel);
    paintTexts(painter);
    painter.setRenderHint(QPainter::Antialiasing);
    paintBar(painter);
}

void StatusWindowWidget::paintTexts(QPainter& painter) const
{
    QRect row(kMargin, kMargin - 4, width() - 2 * kMargin, kRow);
    if (endIsKnown()) {
        painter.setFont(font_->font());
        painter.setPen(kDimText);
        const int percent = static_cast<int>(progress_ * 100.0f);
        painter.drawText(row, Qt::AlignRight | Qt::AlignVCenter,
                         QString::number(percent) + QLatin1String(" %"));
    }
    const auto drawRow = [&](const QtFont& font, const QColor& colour, const QString& text) {
        const bool besidePercent = endIsKnown() && row.top() < kMargin;
        const int room = row.width() - (besidePercent ? kPercentWidth : 0);
        painter.setFont(font.font());
        painter.setPen(colour);
        painter.drawText(row, Qt::AlignLeft | Qt::AlignVCenter | Qt::TextSingleLine,
                         font.metrics().elidedText(text, Qt::ElideRight, room));
        row.translate(0, kRow);
    };
    if (!title_.isEmpty())
        drawRow(*titleFont_, kText, title_);
    const int rows = std::min(static_cast<int>(message_.size()), kMostRows);
    for (int i = 0; i < rows; ++i)
        drawRow(*font_, title_.isEmpty() ? kText : kDimText, message_[i]);
}

void StatusWindowWidget::paintBar(QPainter& painter) const
{
    const QRectF bar(kMargin, height() - kMargin - kBarHeight, width() - 2 * kMargin, kBarHeight);
    constexpr double radius = kBarHeight / 2.0;
    painter.setPen(Qt::NoPen);
    painter.setBrush(kTrack);
    painter.drawRoundedRect(bar, radius, radius);
    const QRectF filled = filledPart(bar);
    if (filled.isEmpty())
        return;
    painter.setBrush(kFill);
    painter.drawRoundedRect(filled, radius, radius);
}

QRectF StatusWindowWidget::filledPart(const QRectF& bar) const
{
    if (endIsKnown())
        return {bar.left(), bar.top(), bar.width() * double(progress_), bar.height()};
    // There and back again, slower towards the ends.
    constexpr double pi = 3.14159265358979323846;
    const double turn = double(clock_.elapsed()) / kWanderPeriodMs * pi;
    const double way = 0.5 - 0.5 * std::cos(turn);
    const double length = bar.width() * kWanderWidth;
    return {bar.left() + way * (bar.width() - length), bar.top(), length, bar.height()};
}
