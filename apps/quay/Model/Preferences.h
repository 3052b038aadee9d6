#pragma once

#include "Model/Text.h"
#include "Model/Units.h"

#include <OS/Core/Ptr.h>
#include <OS/Files/iSettings.h>

#include <vector>

namespace Quay {

/// What the user has chosen, kept in the user's settings, section "Board".
struct Preferences
{
    Units units = Units::eBinary;
    int refreshMs = 1000;    ///< one of kRefreshMs
    int serialSpeed = 9600;  ///< one of kSerialSpeeds
    std::vector<Text> order; ///< the panels' keys; those left out follow in their own order

    friend bool operator==(const Preferences&, const Preferences&) = default;
};

constexpr int kRefreshMs[] = {500, 1000, 2000, 5000};
constexpr int kSerialSpeeds[] = {9600, 19200, 38400};

/// A null store, and values that make no sense, give the defaults.
Preferences readPreferences(const Tq::Ptr<iSettings>& settings);
void writePreferences(const Tq::Ptr<iSettings>& settings, const Preferences& preferences);

/// The words of a text, separated by blanks, each once.
std::vector<Text> wordsOf(const Text& text);

} // namespace Quay
