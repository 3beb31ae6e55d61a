// A dialog template's bytes, taken apart.
#pragma once

#include <string>
#include <vector>

#include "platform/dialog.h"

namespace ui {

struct TemplateItem {
    std::u16string className;
    std::u16string text;
    UINT id = 0;
    DWORD style = 0;
    DWORD exStyle = 0;
    int x = 0, y = 0, width = 0, height = 0; // dialog units
};

struct ParsedTemplate {
    std::u16string caption;
    int pointSize = 0; // 0: the platform's own
    DWORD style = 0;
    DWORD exStyle = 0;
    int width = 0, height = 0; // dialog units
    std::vector<TemplateItem> items;
};

// The plain form of template; the extended one is not used. Templates are compiled with the program, whose
// own they are.
ParsedTemplate ParseDialogTemplate(const DLGTEMPLATE* dialogTemplate);

} // namespace ui
