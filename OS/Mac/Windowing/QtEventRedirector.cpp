#include "OS/Mac/Windowing/QtEventRedirector.h"

#include "OS/Mac/Core/Assertion.h"
#include "OS/Mac/Core/PathText.h"
#include "OS/Mac/Windowing/KeyTranslation.h"
#include "OS/Mac/Windowing/KeyboardState.h"

#include <OS.h>
#include <OS/Core/iUtils.h>

#include <QDropEvent>
#include <QInputMethodEvent>
#include <QKeyEvent>
#include <QMimeData>
#include <QMouseEvent>
#include <QSysInfo>
#include <QUrl>
#include <QWheelEvent>
#include <cmath>
#include <optional>
#include <utility>

namespace {

using Handler = QtEventRedirector::Handler;
using eRC = QtEventRedirector::eRC;
using KeyEvent = iEventHandler::KeyEvent;
using MouseEvent = iEventHandler::MouseEvent;
using WindowEvent = iEventHandler::WindowEvent;

constexpr std::int64_t kQuietAfterPressMs = 80;
// Shorter than any keyboard's delay until keys repeat.
constexpr unsigned long kSoonestRepeatMs = 150;
constexpr std::int64_t kNothingPressed = -1;

// The code that the next release of a modifier carries; kNothingPressed when it has been carried.
std::int64_t lastPressed = kNothingPressed;
std::optional<std::int64_t> lastButtonPressTime;
// The key pressed last and not released since, by its scan code, and when it went down.
std::uint32_t heldKey = 0;
unsigned long heldSince = 0;

std::int64_t now()
{
    return std::llround(OS()->utils()->timeNow());
}

eRC sendWindowEvent(WindowEvent::eKind kind, const Handler& handler)
{
    WindowEvent record;
    record.kind = kind;
    return handler ? handler->handleWindowEvent(record) : iEventHandler::eContinue;
}

// -- Keys

// Whether a release only makes room for the next press of a held key. The toolkit marks those by
// looking ahead for that press, which may not have arrived yet: then the keyboard itself is asked.
bool isRepeatOfHeldKey(const QKeyEvent& release)
{
    if (release.isAutoRepeat())
        return true;
    const std::uint32_t key = release.nativeScanCode();
    const bool mayRepeat = key == heldKey && release.timestamp() - heldSince >= kSoonestRepeatMs;
    if (mayRepeat && KeyboardState::keyboard().isKeyDown(key))
        return true;
    if (key == heldKey)
        heldKey = 0;
    return false;
}

void rememberHeldKey(const QKeyEvent& press)
{
    if (press.nativeScanCode() == heldKey)
        return;
    heldKey = press.nativeScanCode();
    heldSince = press.timestamp();
}

std::uint32_t takeLastPressed()
{
    const std::int64_t code = std::exchange(lastPressed, kNothingPressed);
    return code == kNothingPressed ? 0 : static_cast<std::uint32_t>(code);
}

char32_t firstCharacter(const QString& text)
{
    const auto characters = text.toUcs4();
    return characters.isEmpty() ? 0 : characters.front();
}

// What the key makes without Control. On a layout of another script that is the Latin letter that
// the control character stands for, so that shortcuts work there.
char32_t characterWithoutControl(const QKeyEvent& event, char32_t controlCharacter)
{
    constexpr char32_t endOfAscii = 0x80;
    const char32_t plain = KeyboardState::keyboard().plainCharacter(event.nativeScanCode());
    if (plain != 0 && plain < endOfAscii)
        return plain;
    if (controlCharacter >= 1 && controlCharacter <= 26)
        return 'a' + controlCharacter - 1;
    return static_cast<char32_t>(event.key());
}

void translateText(const QKeyEvent& event, KeyEvent& record)
{
    constexpr char32_t firstPrintable = 32;
    const QString text = event.text();
    const char32_t character = firstCharacter(text);
    const bool madeByControl =
        !text.isEmpty() && character < firstPrintable && (event.modifiers() & Qt::ControlModifier);
    if (madeByControl) {
        record.code = characterWithoutControl(event, character);
        return;
    }
    record.code = character;
    if (character >= firstPrintable && QtEventRedirector::isShortcutKeypress(event))
        record.modifiers = 0;
}

void translate(const QKeyEvent& event, KeyEvent& record)
{
    const int key = event.key();
    if (KeyTranslation::isModifier(key)) {
        record.code = record.pressed ? 0 : takeLastPressed();
        return;
    }
    if (const auto code = KeyTranslation::codeOf(key)) {
        record.code = *code;
        if (KeyTranslation::isKeypadCharacter(key) && (event.modifiers() & Qt::KeypadModifier))
            record.modifiers |= Key::eKeypad;
        return;
    }
    translateText(event, record);
}

// -- Mouse

std::uint32_t buttonMask(Qt::MouseButtons buttons)
{
    std::uint32_t mask = 0;
    if (buttons & Qt::RightButton)
        mask |= MouseEvent::eRight;
    if (buttons & Qt::LeftButton)
        mask |= MouseEvent::eLeft;
    if (buttons & Qt::MiddleButton)
        mask |= MouseEvent::eMiddle;
    return mask;
}

MouseEvent makeMouseEvent(std::uint32_t kind, const QPointF& position, Qt::MouseButtons buttons,
                          Qt::KeyboardModifiers modifiers)
{
    MouseEvent record;
    record.time = now();
    record.position = XY<int>(static_cast<int>(position.x()), static_cast<int>(position.y()));
    record.kind = kind;
    record.buttons = buttonMask(buttons);
    record.modifiers = KeyboardState::toModifiers(static_cast<unsigned int>(modifiers));
    return record;
}

std::uint32_t mouseKind(const QMouseEvent& event)
{
    const bool left = event.button() == Qt::LeftButton;
    switch (event.type()) {
    case QEvent::MouseMove:
        return MouseEvent::eMove;
    case QEvent::MouseButtonRelease:
        return left ? MouseEvent::eLeftUp : MouseEvent::eOtherUp;
    default:
        return left ? MouseEvent::eLeftDown : MouseEvent::eOtherDown;
    }
}

// -- Drops

// Other programs name this machine in the URLs of their files.
bool isThisMachine(const QString& host)
{
    return host.isEmpty() || host == QLatin1String("localhost") ||
           host.compare(QSysInfo::machineHostName(), Qt::CaseInsensitive) == 0;
}

// The path of a local file, byte for byte, as paths are carried here; nothing for any other URL.
std::optional<LightweightString<wchar_t>> localPath(const QUrl& url)
{
    if (!url.isLocalFile())
        return std::nullopt;
    QByteArray path = QByteArray::fromPercentEncoding(url.path(QUrl::FullyEncoded).toLatin1());
    if (!isThisMachine(url.host()))
        path.prepend(url.host().toUtf8()).prepend("//");
    if (path.isEmpty() || path.contains('\0'))
        return std::nullopt;
    return OSInternal::pathFromSystem(LightweightString<char>(path.constData()));
}

} // namespace

eRC QtEventRedirector::redirect(QResizeEvent*, Handler handler)
{
    return sendWindowEvent(WindowEvent::eResized, handler);
}

eRC QtEventRedirector::redirect(QCloseEvent*, Handler handler)
{
    return sendWindowEvent(WindowEvent::eCloseRequested, handler);
}

eRC QtEventRedirector::redirect(QShowEvent*, Handler handler)
{
    return sendWindowEvent(WindowEvent::eShown, handler);
}

eRC QtEventRedirector::redirect(QHideEvent*, Handler handler)
{
    return sendWindowEvent(WindowEvent::eHidden, handler);
}

eRC QtEventRedirector::redirect(QFocusEvent* event, Handler handler)
{
    return sendWindowEvent(event->gotFocus() ? WindowEvent::eShown : WindowEvent::eHidden, handler);
}

eRC QtEventRedirector::redirect(QPaintEvent* event, Handler handler)
{
    const QRect& damaged = event->rect();
    iEventHandler::PaintEvent record;
    record.damaged = {damaged.left(), damaged.top(), damaged.right() + 1, damaged.bottom() + 1};
    return handler ? handler->handlePaint(record) : iEventHandler::eContinue;
}

eRC QtEventRedirector::redirect(QKeyEvent* event, Handler handler)
{
    if (event->key() == Qt::Key_unknown) {
        OSInternal::reportAssertion("keypressed != Qt::Key_unknown",
                                    "OS/Mac/QtEventRedirector line 199");
        return iEventHandler::eContinue;
    }
    KeyEvent record;
    record.modifiers = KeyboardState::setModifiersFromEvent(event);
    record.pressed = event->type() != QEvent::KeyRelease;
    if (event->key() == Qt::Key_CapsLock || (!record.pressed && isRepeatOfHeldKey(*event)))
        return iEventHandler::eContinue;

    translate(*event, record);
    if (record.pressed) {
        rememberHeldKey(*event);
        lastPressed = record.code;
    }
    return handler ? handler->handleKey(record) : iEventHandler::eContinue;
}

eRC QtEventRedirector::redirect(QInputMethodEvent* event, Handler handler)
{
    for (const auto character : event->commitString().toUcs4()) {
        KeyEvent record;
        record.code = character;
        record.pressed = true;
        lastPressed = record.code;
        if (handler && handler->handleKey(record) == iEventHandler::eQuit)
            return iEventHandler::eQuit;
    }
    return iEventHandler::eContinue;
}

eRC QtEventRedirector::redirect(QMouseEvent* event, Handler handler)
{
    const MouseEvent record =
        makeMouseEvent(mouseKind(*event), event->localPos(), event->buttons(), event->modifiers());
    if (record.kind == MouseEvent::eLeftDown || record.kind == MouseEvent::eOtherDown)
        lastButtonPressTime = record.time;
    const bool tooSoon = record.kind == MouseEvent::eMove && lastButtonPressTime &&
                         record.time - *lastButtonPressTime < kQuietAfterPressMs;
    return handler && !tooSoon ? handler->handleMouse(record) : iEventHandler::eContinue;
}

eRC QtEventRedirector::redirect(QWheelEvent* event, Handler handler)
{
    const QPoint delta = event->angleDelta();
    if (delta.y() == 0 || std::abs(delta.x()) > std::abs(delta.y()))
        return iEventHandler::eContinue;
    MouseEvent record =
        makeMouseEvent(MouseEvent::eWheel, event->position(), event->buttons(), event->modifiers());
    record.wheelDirection = delta.y() > 0 ? 1 : -1;
    return handler ? handler->handleMouse(record) : iEventHandler::eContinue;
}

eRC QtEventRedirector::redirect(QDragEnterEvent* event, Handler)
{
    if (event->mimeData()->hasUrls())
        event->acceptProposedAction();
    return iEventHandler::eContinue;
}

eRC QtEventRedirector::redirect(QDropEvent* event, Handler handler)
{
    event->acceptProposedAction();
    for (const QUrl& url : event->mimeData()->urls()) {
        const auto path = localPath(url);
        if (path && handler && handler->handleFileDrop(*path) == iEventHandler::eQuit)
            return iEventHandler::eQuit;
    }
    return iEventHandler::eContinue;
}

bool QtEventRedirector::isShortcutKeypress(const QKeyEvent& event)
{
    const Qt::KeyboardModifiers held = event.modifiers() & ~Qt::KeypadModifier;
    if (held == Qt::NoModifier || held == Qt::ShiftModifier)
        return false;
    const char32_t plain = KeyboardState::keyboard().plainCharacter(event.nativeScanCode());
    return plain != 0 && QChar::toUpper(plain) != static_cast<char32_t>(event.key());
}
