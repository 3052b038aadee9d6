#pragma once

#include "View/BoardState.h"

#include <cstdint>

namespace Quay {

/// Turns keys and the mouse into changes of the state. Knows nothing of windows or drawing.
class Interaction
{
public:
    explicit Interaction(BoardState& state) : state_(state) {}

    void press(const Point& point);
    void move(const Point& point);
    void release(const Point& point);
    /// @param direction +1 away from the user
    void wheel(const Point& point, int direction);
    void key(std::uint32_t code, std::uint32_t modifiers);
    void resize(const Point& size);
    /// Drops what the button held, as when the window loses the keyboard.
    void cancelDrag();
    /// Keeps scrolling and focus within what there is, after any change.
    void settle();

private:
    void act(const Action& action);
    void movePanel(int from, int to);
    void focusOn(const Hit& hit);
    void focusNextPanel(int direction);
    void focusNextRow(int direction);
    void focusNextPart(int direction);
    bool scrollKey(std::uint32_t code);
    const Row* focusedRow() const;

    BoardState& state_;
};

} // namespace Quay
