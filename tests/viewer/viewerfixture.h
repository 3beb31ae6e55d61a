// A user with the record viewer.
#pragma once

#include "app/application.h"
#include "platform/controls.h"
#include "resources/resource.h"
#include "tests/support/sampledatabases.h"
#include "tests/support/session.h"

inline constexpr char16_t kOverwrite[] =
    u"The property data has changed. Do you what to overwrite it?\n\nWARNING: changing a property "
    u"of a system database may cause your device to stop functioning property and require a hard "
    u"reset!";
inline constexpr char16_t kDeleteRecord[] =
    u"Do you want to delete the current record?\n\nWARNING: deleting a record from a system "
    u"database may cause your device to stop functioning property and require a hard reset!";

inline constexpr char16_t kOutOfMemory[] =
    u"There is not enough memory to complete this operation. Close other programs and try again.";
inline constexpr char16_t kIntOutOfRange[] =
    u"Property data is incorrect: enter an integer number between -32768 and 32767.\nThe "
    u"database was not changed.";

using Rows = std::vector<std::u16string>;

class ViewerTest : public Session {
protected:
    // Opens a database in the viewer, where the steps go on.
    void View(const std::u16string& name) {
        InMainWindow();
        TapRow(IDC_LIST, name);
        InWindow(IDD_VIEWER);
    }
    void SelectType(const std::u16string& typeName) { TapRow(IDC_VIEWER_LIST, typeName); }
    // The row below, which may have the same type.
    void SelectNext() { Press(Qt::Key_Down); }
    Rows ShownTypes() { return ColumnTexts(Control(IDC_VIEWER_LIST), 0); }
    HeaderArrow Arrow(const std::u16string& title) { return ArrowBeside(Control(IDC_VIEWER_LIST), title); }
    std::u16string Position() { return Text(IDC_VIEWER_POSITION); }
    std::u16string Shown(int editor) { return IsWindowVisible(Control(editor)) ? Text(editor) : u"(hidden)"; }
    bool HasFocus(int controlId) { return GetFocus() == Control(controlId); }
    void CloseViewer() { Press(Qt::Key_Escape); }
};

inline const std::vector<std::vector<SampleValue>> kPeople = {
    {TextValue(1, u"Ann"), TextValue(2, u"555-1234"), NumberValue(3, CEVT_I2, 30)},
    {TextValue(1, u"Bob"), TextValue(2, u"555-9876"), NumberValue(3, CEVT_I2, 20)},
    {TextValue(1, u"Cleo"), NumberValue(3, CEVT_I2, 120)}};
