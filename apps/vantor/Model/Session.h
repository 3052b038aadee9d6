#pragma once

#include "Model/FrameRate.h"
#include "Model/Text.h"
#include "Model/ViewerChoices.h"
#include "common/WindowPlace.h"

#include <OS/Core/Ptr.h>
#include <OS/Files/iSettings.h>

namespace Vantor {

/// What is remembered from one run to the next, in the user's settings: sections "Window" and
/// "Editor".
struct Session
{
    WindowPlace place{{1280, 720}, {80, 60}};
    Text folder;           ///< of pictures, from the root; empty: the sample media
    double zoom = 0.0;     ///< pixels of the timeline for a frame; 0: by the window's size
    int rate = kUsualRate; ///< which of kFrameRates
    bool loops = false;
    ViewerChoices viewer; ///< without the place of the picture
    bool effects = true;  ///< whether the panel is open; so for the scopes
    bool scopes = true;
    Text effect;     ///< the name of the one chosen; empty: none
    Text controller; ///< "midi:NAME" or "serial:PATH"; empty: none
    int stillType = 0;

    friend bool operator==(const Session&, const Session&) = default;
};

/// A null store, and values that make no sense, give the defaults.
Session readSession(const Tq::Ptr<iSettings>& settings);
void writeSession(const Tq::Ptr<iSettings>& settings, const Session& session);

} // namespace Vantor
