// What the recorded compiler compiles.
#include <algorithm>
#include <map>
#include <string>
#include <vector>

std::map<std::string, std::vector<int>> wordsByPlace(const std::string& text)
{
    std::map<std::string, std::vector<int>> places;
    std::string word;
    int place = 0;
    for (char c : text + " ") {
        if (c != ' ') {
            word += c;
        } else if (!word.empty()) {
            places[word].push_back(place++);
            word.clear();
        }
    }
    return places;
}

std::vector<std::string> byLength(const std::map<std::string, std::vector<int>>& places)
{
    std::vector<std::string> words;
    for (const auto& [word, where] : places)
        words.push_back(word + ":" + std::to_string(where.size()));
    std::sort(words.begin(), words.end(),
              [](const auto& a, const auto& b) { return a.size() < b.size(); });
    return words;
}
