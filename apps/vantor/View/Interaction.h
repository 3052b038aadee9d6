#pragma once

#include "View/EditorState.h"

#include <cstdint>
#include <functional>

namespace Vantor {

/// Turns keys and the mouse into changes of the state. Knows nothing of windows or drawing.
class Interaction
{
public:
    /// The x of every boundary between the characters of one of the two text fields.
    using Boundaries = std::function<std::vector<int>(Focus field, const Text& text)>;

    Interaction(EditorState& state, Boundaries boundaries);

    /// @param timeMs of the event, to tell a double click
    void press(const Point& point, std::uint32_t modifiers, std::int64_t timeMs);
    void move(const Point& point);
    void release(const Point& point);
    /// @param direction +1 away from the user
    void wheel(const Point& point, int direction, std::uint32_t modifiers);
    void key(std::uint32_t code, std::uint32_t modifiers);

    /// Adds a picture to the bin and selects it; says so where it is none.
    void dropFile(const Text& path);
    void resize(const Point& size);
    /// Drops what the button held, as when the window loses the keyboard.
    void cancelDrag();

    /// Keeps layout and scrolling within bounds after a change of size or content.
    void settle();

private:
    void pressTitleOrFilter(Focus field, const Point& point, std::uint32_t modifiers, bool twice);
    void pressTile(int item, bool twice);
    void pressClip(const Hit& hit, const Point& point);
    void pressViewer(const Point& point, bool twice);
    void pressButton(int button);
    void pressChip(int chip);
    void pressEffectButton(int button);
    void pressSlider(int slider, const Point& point, bool twice);
    void chooseEffect(int direction);
    void dragSlider(const Point& point);
    bool effectsKey(std::uint32_t code, std::uint32_t modifiers);
    void changeEntrance();
    void changeRate(int by, bool around);
    void zoomViewer(ViewerZoom zoom);
    void dragTo(const Point& point);
    void dragClip(const Point& point);
    void dragText(const Point& point);
    void dragShift(const Point& point);
    void startDrag(Drag::Kind kind, int index, int grab, const Point& point);
    void insertPicture(int item, Track track, int start);
    void focusOn(Focus focus, bool byKeyboard);
    void moveFocus(int direction);
    void leaveField(bool keep);
    bool fieldKey(std::uint32_t code, std::uint32_t modifiers);
    bool commandKey(std::uint32_t code, std::uint32_t modifiers);
    bool binKey(std::uint32_t code);
    void transportKey(std::uint32_t code, std::uint32_t modifiers);
    bool viewerKey(std::uint32_t code);
    void deleteClip();
    void remember(const Project& before);
    void undo();
    void redo();
    void afterProjectChange();
    void revealPlayhead();
    int snapped(int frame, int ignoredClip) const;

    EditorState& state_;
    Boundaries boundaries_;
    std::int64_t lastPressMs_ = 0;
    Point lastPress_{-100, -100};
    Point shiftBefore_; ///< of the picture that is being dragged
};

} // namespace Vantor
