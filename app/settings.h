// The program's settings: read from the registry when made, written back when destroyed.
#pragma once

#include "platform/gdi.h"
#include "platform/types.h"

// The last one is the viewer's: its list and the list of databases share key and direction.
enum SortKey : DWORD {
    kSortByName = 0,
    kSortBySize = 1,
    kSortByDate = 2,
    kSortByNameToo = 3, // from the registry only
    kSortByInteger = 4
};

constexpr int kSelectionBytes = 250;
constexpr BYTE kNoSelection = 0xFF;

// The fields in the order that the stored values rely on: each flag is stored as the four bytes that begin at
// it.
struct SettingsData {
    DWORD sortKey = kSortByName;
    BYTE sortAscending = 1; // A to Z, small to large, old to new
    BYTE showSystemDatabases = 0;
    WORD storedWithFlags = 0; // the rest of the stored four bytes; means nothing
    DWORD listStyle = 1;      // the list view's style bits: details
    DWORD bold = 0;
    HFONT listFont = nullptr; // owned
    HFONT boldFont = nullptr; // owned
    BYTE selection[kSelectionBytes] = {};
    DWORD fullRow = 1;
    WCHAR scriptName[MAX_PATH] = {}; // Autobackup script
    WCHAR documentsFolder[MAX_PATH] = {};
    DWORD promptScript = 0;
    DWORD interactive = 1;            // questions and dialogs are shown; switch D clears it
    DWORD unattended = 0;             // failures of the store are not shown; switch I
    DWORD noProgress = 0;             // a wait cursor instead of the progress dialog; switch P
    DWORD includeSystemDatabases = 0; // unattended jobs take system databases too; switch S
    DWORD showWarning = 1;
    DWORD searchNumProp = 0;
    DWORD matchCase = 0;
    DWORD doubleTap = 0;
};

class Settings : public SettingsData {
public:
    // Defaults, fonts, the default script path, then whatever the registry holds.
    Settings();
    // Saves, then releases the fonts.
    virtual ~Settings();
    Settings(const Settings&) = delete;
    Settings& operator=(const Settings&) = delete;

    bool Save();
    // After a change of `bold`.
    void RecreateListFont();

private:
    void FindDocumentsFolder();
    void Load();
};
