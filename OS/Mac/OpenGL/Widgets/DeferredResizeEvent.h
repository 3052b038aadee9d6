#pragma once

#include "OS/Mac/OpenGL/Widgets/GLRenderTarget.h"

#include <OS/Threads/iExecutable.h>

#include <QResizeEvent>

class QtGLWidget;

/// A widget's resize, carried out on the updater, where its context lives.
class DeferredResizeEvent final : public iExecutable
{
public:
    DeferredResizeEvent(QtGLWidget& widget, const QResizeEvent& event);

    /// Does nothing for a widget that has gone.
    void execute() override;

private:
    QtGLWidget* widget_;
    Tq::Ptr<RenderTargetState> state_;
    QResizeEvent event_;
};
