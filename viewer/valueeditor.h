// Reading values back from the editors of the viewer and the wizard.
#pragma once

#include "platform/dialog.h"
#include "platform/objectstore.h"

constexpr int kNumberLimit = 30; // characters that the numeric editor takes

// What the user has touched since the value was shown.
struct EditorState {
    bool numberModified;
    bool textModified;
};

// Reads the editor of the stored property's type. True when the value counts as changed: `value` then holds
// it under the same identifier, a text in a block of the local heap that the caller releases (none: the text
// was emptied). A number out of a 16-bit type's range is reported here and counts as unchanged. Quirk: text
// in the editor of a larger number that is no number counts as unchanged without a word.
bool ParseEditedValue(HWND dialog, const CEPROPVAL& stored, const EditorState& state, CEPROPVAL* value);

// The number in the numeric editor as an INT or UINT; out of range is reported and false.
bool ReadSmallNumber(HWND dialog, WORD type, CEVALUNION* value);
// The text as a floating value; 0 when it is none.
double ReadFloat(HWND dialog);
// The two pickers' date and time of day, as UTC.
FILETIME ReadDate(HWND dialog);
void ShowDate(HWND dialog, const SYSTEMTIME& local);
// A copy of the text editor's text in the local heap, null when it is empty. False when memory is short,
// which is reported.
bool ReadEditorText(HWND dialog, WCHAR** text);
// What the label above the numeric editor says of a type; 0 for types without one.
UINT InfoStringId(WORD type);
