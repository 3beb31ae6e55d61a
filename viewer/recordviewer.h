// The record viewer: one database, one record at a time, its properties listed and edited.
#pragma once

#include "app/application.h"
#include "platform/controls.h"
#include "platform/dialog.h"
#include "store/dbhandle.h"
#include "viewer/search.h"
#include "viewer/undo.h"

constexpr WORD kNoProperty = 0xFFFF;
constexpr DWORD kSelectNone = 0xFFFFFFFF; // in place of a property identifier

constexpr UINT kReloadTimer = 511; // runs from another process's change to the reload

// How a viewer's loop ended.
enum ViewerResult { kViewerOk = 1, kViewerCancelled = 2, kViewerNotMade = 3 };

// The viewer's own writes are under way while one of these lives; they may be nested.
class OwnWriteScope {
public:
    explicit OwnWriteScope(DWORD* count) : count(count) { ++*count; }
    ~OwnWriteScope() { --*count; }
    OwnWriteScope(const OwnWriteScope&) = delete;
    OwnWriteScope& operator=(const OwnWriteScope&) = delete;

private:
    DWORD* const count;
};

class RecordViewer {
public:
    RecordViewer() = default;
    virtual ~RecordViewer();
    RecordViewer(const RecordViewer&) = delete;
    RecordViewer& operator=(const RecordViewer&) = delete;

    // ---- the window: recordviewer.cpp ----
    void Init(HWND dialogWindow);
    // Destroys the dialog; any code but kViewerNotMade ends the loop.
    void Close(int code);
    void RunCommand(UINT command, UINT notification, HWND focus);

    // ---- reading the database and walking its records: reload.cpp ----
    // Opens the database anew and goes to the first record, or to one by its identifier. False when it could
    // not, which is reported and closes the viewer.
    bool ReloadDatabase(CEOID oidToSelect);
    // Keeps record and property selected.
    void ReloadAndKeepPosition();
    void Navigate(UINT command);
    void SortBy(UINT command);
    // Another process has changed a database; its record is read anew once the viewer is active.
    void OnStoreChange(CEOID changedDatabase);
    void OnActivate(bool nowActive);
    void OnTimer(UINT id);

    // ---- the list of the record's properties: propertylist.cpp ----
    // Reads the current record and lists its properties anew; selects one by its identifier, or the row
    // selected before. A record that cannot be read is reported, and its list is empty.
    void FillPropertyList(CEPROPID propIdToSelect);
    CEPROPVAL* SelectedProperty() const; // null for none
    void OnSelectionChanged();
    void OnColumnClick(int column);

    // ---- the editors: showvalue.cpp ----
    void ShowValue(const CEPROPVAL& property);
    bool IsEditor(HWND window) const;

    // ---- writing changes back: editing.cpp ----
    // Writes the value in the editor into the edited property; false when there is none or nothing was
    // written. A list that is refilled for it selects as FillPropertyList does.
    bool SaveEditedProperty(bool refill, CEPROPID propIdToSelect = kSelectNone);
    void DeletePropertyCommand();
    void DeleteRecordCommand();
    void AddPropertyCommand();

    // ---- the Edit menu: editmenu.cpp, find.cpp ----
    void UndoCommand(HWND focus);
    void CopyProperty(HWND focus);
    void CutProperty(HWND focus);
    void PasteProperty(HWND focus);
    void SelectAllText(HWND focus);
    void FindCommand();
    void FindNextCommand();

    // ---- which commands are offered: viewermenus.cpp ----
    void UpdateMenus(HMENU menu);

    HWND Control(int id) const { return GetDlgItem(dialog, id); }

    HWND dialog = nullptr;
    HWND menuBar = nullptr;
    WCHAR databaseName[kNameCapacity] = {};
    DbHandle* database = nullptr; // owned
    CEDBASEINFO info = {};
    DWORD recordIndex = 0; // of the current record in the current order
    CEOID recordId = 0;
    RecordBuffer record;
    WORD editedProperty = kNoProperty; // its index in the record
    int shownType = kNoType;           // whose editor is visible
    BYTE numericModified = 0;
    BYTE textModified = 0;
    int currentSort = kNoSort;
    WCHAR findText[kFindTextCapacity] = {};
    UndoStep undo;
    DWORD ownWrites = 0;     // that are under way: the changes that they make are no news
    DWORD changePending = 0; // by another process
    DWORD active = 0;
    bool quitPosted = false; // the loop ends with the code that was given to Close

    static constexpr int kNoType = -1;
    static constexpr int kNoSort = -1;
    static constexpr int kUnsorted = 15; // "Unsorted" was chosen from the menu

private:
    bool IsEdited() const { return editedProperty < record.propCount; }
    bool HasSort(int sort) const { return sort >= 0 && sort < info.wNumSortOrder; }

    // recordviewer.cpp
    void InitWindow();
    void InitList();
    // reload.cpp
    bool ReadDatabase(CEOID oidToSelect); // as ReloadDatabase, but leaves the closing to the caller
    bool OpenInOrder(int sort);
    bool ReopenInOrder(int sort);
    void FillSortMenu();
    // propertylist.cpp
    void InsertPropertyRows();
    void SelectRow(int row);
    int SelectAndSort(CEPROPID propIdToSelect, int selectedBefore);
    void ReturnFocus(HWND focus);
    void ReportUnreadable(DWORD failure);
    void ShowPosition();
    WORD SelectedPropertyIndex() const; // kNoProperty for none
    // showvalue.cpp
    void HideEditors();
    void ShowEditorsFor(WORD type);
    // editing.cpp
    CEPROPVAL* ConfirmedProperty(const CEPROPVAL& property, UINT question);
    bool WriteEdited(const CEPROPVAL& stored, CEPROPVAL* value);
    // editmenu.cpp, find.cpp
    void WritePasted(CEOID target, CEPROPVAL* property, bool clash);
    FindOptions RememberedFindOptions() const;
    bool AskFindOptions();
    void Search();
};

// Opens a database in a viewer over the owner, which is disabled until the viewer closes. Returns a
// ViewerResult.
int RunRecordViewer(RecordViewer* viewer, HWND ownerWindow, const WCHAR* databaseName);
