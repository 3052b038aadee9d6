#pragma once

#include <QObject>
#include <QPointer>
#include <QWidget>

/// Sends the keys, mouse and wheel events of a widget to another one, at that one's positions and
/// with its pointer, as if the first were not there. An event filter.
class InputForwarder final : public QObject
{
public:
    /// @param target may be null, or go: events are then swallowed
    explicit InputForwarder(QWidget* target) : target_(target) {}

    bool eventFilter(QObject* watched, QEvent* event) override;

private:
    QPointer<QWidget> target_;
};
