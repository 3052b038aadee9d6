#include "OS/Mac/Windowing/KeyTranslation.h"

#include <OS/Windowing/KeyCodes.h>

#include <Qt>

namespace KeyTranslation {

namespace {

std::uint32_t offsetFrom(int qtKey, int firstQtKey, Key::eCode firstCode)
{
    return firstCode + static_cast<std::uint32_t>(qtKey - firstQtKey);
}

} // namespace

std::optional<std::uint32_t> codeOf(int qtKey)
{
    if (qtKey >= Qt::Key_F1 && qtKey <= Qt::Key_F12)
        return offsetFrom(qtKey, Qt::Key_F1, Key::eF1);
    if (qtKey >= Qt::Key_F13 && qtKey <= Qt::Key_F19)
        return offsetFrom(qtKey, Qt::Key_F13, Key::eF13);
    if (isKeypadCharacter(qtKey))
        return static_cast<std::uint32_t>(qtKey);

    switch (qtKey) {
    case 0:
        return Key::eNone;
    case Qt::Key_Escape:
        return Key::eEscape;
    case Qt::Key_Tab:
    case Qt::Key_Backtab:
        return Key::eTab;
    case Qt::Key_Backspace:
        return Key::eBackspace;
    case Qt::Key_Return:
    case Qt::Key_Enter:
        return Key::eReturn;
    case Qt::Key_Insert:
        return Key::eInsert;
    case Qt::Key_Delete:
    case Qt::Key_Clear:
        return Key::eDelete;
    case Qt::Key_Home:
        return Key::eHome;
    case Qt::Key_End:
        return Key::eEnd;
    case Qt::Key_Left:
        return Key::eLeft;
    case Qt::Key_Up:
        return Key::eUp;
    case Qt::Key_Right:
        return Key::eRight;
    case Qt::Key_Down:
        return Key::eDown;
    case Qt::Key_PageUp:
        return Key::ePageUp;
    case Qt::Key_PageDown:
        return Key::ePageDown;
    default:
        return std::nullopt;
    }
}

bool isKeypadCharacter(int qtKey)
{
    switch (qtKey) {
    case Qt::Key_Asterisk:
    case Qt::Key_Plus:
    case Qt::Key_Minus:
    case Qt::Key_Period:
    case Qt::Key_Slash:
    case Qt::Key_Equal:
        return true;
    default:
        return qtKey >= Qt::Key_0 && qtKey <= Qt::Key_9;
    }
}

bool isModifier(int qtKey)
{
    return qtKey == Qt::Key_Shift || qtKey == Qt::Key_Control || qtKey == Qt::Key_Meta ||
           qtKey == Qt::Key_Alt;
}

} // namespace KeyTranslation
