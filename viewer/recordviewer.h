// The record viewer: one database, one record at a time, its properties listed and edited.
#pragma once

#include "app/application.h"
#include "platform/controls.h"
#include "platform/dialog.h"
#include "store/dbhandle.h"
#include "viewer/flatproperty.h"

constexpr WORD kNoProperty = 0xFFFF;
constexpr DWORD kSelectNone = 0xFFFFFFFF; // in place of a property identifier
constexpr int kFindTextCapacity = 260;

constexpr UINT kReloadTimer = 511; // runs from another process's change to the reload

// How a viewer's loop ended.
enum ViewerResult { kViewerOk = 1, kViewerCancelled = 2, kViewerNotMade = 3 };

enum class UndoKind : DWORD { None = 0, Deleted = 1, Changed = 2, Added = 3, AddedToo = 4, Cut = 5 };

struct UndoRecord {
    UndoKind kind = UndoKind::None;
    FlatProperty* copy = nullptr; // owned
};

class RecordViewer {
public:
    RecordViewer() = default;
    virtual ~RecordViewer();
    RecordViewer(const RecordViewer&) = delete;
    RecordViewer& operator=(const RecordViewer&) = delete;

    // ---- window ----
    void Init(HWND dialogWindow);
    // Destroys the dialog; any code but kViewerNotMade ends the loop.
    void Close(int code);
    void RunCommand(UINT command, UINT notification, HWND focus);

    // ---- reading and walking ----
    // Opens the database anew and goes to the first record, or to one by its identifier. False when it could
    // not, which is reported and closes the viewer.
    bool ReloadDatabase(CEOID oidToSelect);
    // The same, leaving it to the caller to close the viewer.
    bool ReadDatabase(CEOID oidToSelect);
    // Reads the current record and lists its properties anew; selects one by its identifier, or the row
    // selected before. A record that cannot be read is reported, and its list is empty.
    void FillPropertyList(CEPROPID propIdToSelect);
    void Navigate(UINT command);
    void SortBy(UINT command);
    void FillSortMenu();
    // Keeps record and property selected.
    void ReloadAndKeepPosition();

    // A step through the records; false at the end, and on a failure, which has been shown.
    bool Walk(DbHandle::SeekOperation seek, DWORD* index);

    // ---- selection and values ----
    WORD SelectedPropertyIndex() const; // kNoProperty for none
    CEPROPVAL* SelectedProperty() const;
    CEPROPVAL* FindProperty(CEPROPID identifier) const; // in the current record; null when it has none
    void OnSelectionChanged();
    void OnColumnClick(int column);
    void ShowValue(const CEPROPVAL& property);

    // ---- editing ----
    // Writes the value in the editor into a property of the current record; false when nothing was written.
    // A list that is refilled for it selects as FillPropertyList does.
    bool SaveEditedProperty(WORD index, bool refill, CEPROPID propIdToSelect = kSelectNone);
    void DeletePropertyCommand();
    void DeleteRecordCommand();
    void AddPropertyCommand();
    void UndoCommand(HWND focus);
    void RememberForUndo(UndoKind kind, const CEPROPVAL& property);
    void ForgetUndo();

    // ---- find, clipboard, menus ----
    // Null asks for the text first.
    void FindCommand(const WCHAR* textOrNone);
    void CopyProperty(HWND focus);
    void CutProperty(HWND focus);
    void PasteProperty(HWND focus);
    void SelectAllText(HWND focus);
    bool PutPropertyOnClipboard(const CEPROPVAL& property);
    void UpdateMenus(HMENU menu);

    // ---- changes by others ----
    void OnStoreChange(CEOID changedDatabase);
    void OnActivate(bool nowActive);
    void OnTimer(UINT id);

    bool IsEdited(WORD index) const { return index != kNoProperty && index < record.propCount; }
    HWND Control(int id) const { return GetDlgItem(dialog, id); }
    bool IsEditor(HWND window) const;

    UndoRecord undo;
    WCHAR databaseName[kNameCapacity] = {};
    HWND dialog = nullptr;
    DbHandle* database = nullptr; // owned
    DWORD recordIndex = 0;        // of the current record in the current order
    RecordBuffer record;
    CEOID recordId = 0;
    HWND menuBar = nullptr;
    CEDBASEINFO info = {};
    int shownType = kNoType; // whose editor is visible
    BYTE numericModified = 0;
    BYTE textModified = 0;
    WORD editedProperty = kNoProperty;
    int currentSort = kNoSort;
    WCHAR findText[kFindTextCapacity] = {};
    DWORD saving = 0;        // own writes are under way
    DWORD changePending = 0; // by another process
    DWORD active = 0;
    bool quitPosted = false; // the loop ends with the code that was given to Close

    static constexpr int kNoType = -1;
    static constexpr int kNoSort = -1;
    static constexpr int kUnsorted = 15; // "Unsorted" was chosen from the menu

private:
    bool OpenInOrder(int sort);
    bool HasSort(int sort) const { return sort >= 0 && sort < info.wNumSortOrder; }
    void InitWindow();
    void InitList();
    void InsertPropertyRows();
    void SelectRow(int row);
    void ReturnFocus(HWND focus);
    void ReportUnreadable(DWORD failure);
    void ShowPosition();
    void HideEditors();
    void ShowEditorsFor(WORD type);
    bool RunFindDialog();
    bool SearchOn(DWORD* index, RecordBuffer* buffer, CEPROPID* hit);
    bool Search(DWORD* index, RecordBuffer* buffer, CEPROPID* hit);
    void EndSearchWithoutHit(bool complete);
    CEPROPVAL* ConfirmedProperty(const CEPROPVAL& property, UINT question);
    bool WriteEdited(const CEPROPVAL& stored, CEPROPVAL* value);
    void WritePasted(CEOID target, CEPROPVAL* property, bool clash);
    bool UndoWrite(CEPROPID* selectAfter);
};

// Opens a database in a viewer over the owner, which is disabled until the viewer closes. Returns a
// ViewerResult.
int RunRecordViewer(RecordViewer* viewer, HWND ownerWindow, const WCHAR* databaseName);
