#pragma once

#include "OS/Mac/OpenGL/Contexts/OpenGLContextProtector.h"

#include <QCoreApplication>

#include <utility>

/// Lets go of what holds GL textures, under the GL lock with a context current, so that the driver
/// gives their memory back now.
///
/// After the Qt application object has gone nothing of GL can be freed: it stays with the process.
template <class Holder>
void releaseTextures(Holder&& holder)
{
    if (!QCoreApplication::instance()) {
        new Holder(std::forward<Holder>(holder));
        return;
    }
    const OpenGLContextProtector protector;
    const Holder released(std::forward<Holder>(holder));
}
