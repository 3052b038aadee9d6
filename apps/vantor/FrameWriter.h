#pragma once

#include "View/EditorState.h"

namespace Vantor {

/// Draws one frame of the editor into a picture file, without a window.
///
/// @param scale pixels of the picture for each logical pixel of the state's size
/// @return what went wrong, in one line, or nothing
Text writeFrame(EditorState state, double scale, const Text& path);

/// Shows the editor in a window without a frame, at the top left of the screen, and writes what the
/// screen shows of it: also what other threads and OpenGL have drawn there.
///
/// @return what went wrong, in one line, or nothing
Text grabFrame(EditorState state, const Text& path);

/// The name for a picture of the frame under the playhead: "Harbour 00;00;12;05".
Text exportName(const EditorState& state);
/// The extension of a type of still, without the dot, lower case: counted round and round those
/// that the library can save.
Text stillExtension(int type);
/// Writes the picture under the playhead, as large as the sequence, into a folder as a file of a
/// new name, of the state's type.
///
/// @param path gets the file's path @return what went wrong, in one line, or nothing
Text exportFrame(const EditorState& state, const Text& folder, Text& path);

} // namespace Vantor
