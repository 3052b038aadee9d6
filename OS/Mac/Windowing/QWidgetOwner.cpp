#include "OS/Mac/Windowing/QWidgetOwner.h"

#include <QThread>

QWidgetOwner::~QWidgetOwner()
{
    if (owned_ && owned_->thread() != QThread::currentThread())
        destroyWidgetLater();
    delete owned_.data();
}

void QWidgetOwner::setWidget(QWidget* widget)
{
    delete owned_.data();
    owned_ = widget;
}

void QWidgetOwner::destroyWidgetLater()
{
    if (owned_)
        owned_->deleteLater();
    owned_.clear();
}
