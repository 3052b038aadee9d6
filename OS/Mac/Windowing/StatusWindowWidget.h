#pragma once

#include <OS/Painting/iFont.h>

#include <QBasicTimer>
#include <QElapsedTimer>
#include <QStringList>
#include <QWidget>

class QtFont;

/// The picture of the status window: a title, up to eight lines of message, a bar.
///
/// Without a title the message stands in its place. Work without a known end is a band that wanders
/// along the bar by the clock, so it moves whenever anything is painted and by itself while the
/// event loop runs. The user cannot close the window.
class StatusWindowWidget final : public QWidget
{
public:
    StatusWindowWidget();
    ~StatusWindowWidget() override;

    void setTitle(const QString& title);
    void setMessage(const QString& message);
    /// Clamped to 1; a negative one, or no number, shows work without a known end.
    void setProgress(float fraction);
    /// Centres the window over another, or on its screen where there is none to be seen.
    void placeOver(const QWidget* other);

protected:
    void paintEvent(QPaintEvent* event) override;
    void timerEvent(QTimerEvent* event) override;
    void showEvent(QShowEvent* event) override;
    void hideEvent(QHideEvent* event) override;
    void closeEvent(QCloseEvent* event) override;

private:
    void fitHeight();
    void followProgress();
    int textRows() const;
    bool endIsKnown() const { return progress_ >= 0.0f; }
    void paintTexts(QPainter& painter) const;
    void paintBar(QPainter& painter) const;
    QRectF filledPart(const QRectF& bar) const;

    QString title_;
    QStringList message_;
    float progress_ = -1.0f;
    Tq::Ptr<QtFont> titleFont_;
    Tq::Ptr<QtFont> font_;
    QBasicTimer wandering_;
    QElapsedTimer clock_;
};
