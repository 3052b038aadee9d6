#include "Model/Preferences.h"

#include "common/StoredValues.h"

#include <algorithm>
#include <iterator>

namespace Quay {

namespace {

constexpr const char* kSection = "Board";

} // namespace

std::vector<Text> wordsOf(const Text& text)
{
    std::vector<Text> words;
    Text::size_type from = 0;
    while ((from = text.find_first_not_of(L" ", from)) != Text::npos) {
        const Text::size_type end = std::min(text.find(L' ', from), text.size());
        const Text word = text.substr(from, end - from);
        if (std::find(words.begin(), words.end(), word) == words.end())
            words.push_back(word);
        from = end;
    }
    return words;
}

Preferences readPreferences(const Tq::Ptr<iSettings>& settings)
{
    const StoredValues values(settings, kSection);
    Preferences preferences;
    preferences.units =
        values.text("Units", Text()) == L"decimal" ? Units::eDecimal : Units::eBinary;
    const int refreshMs = values.integer("RefreshMs", preferences.refreshMs, 1, 60000);
    if (std::find(std::begin(kRefreshMs), std::end(kRefreshMs), refreshMs) != std::end(kRefreshMs))
        preferences.refreshMs = refreshMs;
    const int speed = values.integer("SerialSpeed", preferences.serialSpeed, 1, 1'000'000);
    if (std::find(std::begin(kSerialSpeeds), std::end(kSerialSpeeds), speed) !=
        std::end(kSerialSpeeds))
        preferences.serialSpeed = speed;
    preferences.order = wordsOf(values.text("Order", Text()));
    return preferences;
}

void writePreferences(const Tq::Ptr<iSettings>& settings, const Preferences& preferences)
{
    StoredValues values(settings, kSection);
    values.setText("Units", preferences.units == Units::eDecimal ? L"decimal" : L"binary");
    values.setInteger("RefreshMs", preferences.refreshMs);
    values.setInteger("SerialSpeed", preferences.serialSpeed);
    if (preferences.order.empty())
        values.remove("Order");
    else
        values.setText("Order", Text::join(preferences.order, L" "));
}

} // namespace Quay
