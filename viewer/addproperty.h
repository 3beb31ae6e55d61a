// The Add Property Wizard: a few dialogs that make one new property.
#pragma once

#include "platform/dialog.h"
#include "platform/objectstore.h"

constexpr DWORD kEndOfIds = 0xFFFFFFFF; // behind the last of a list of ids
constexpr int kWizardBack = 3;          // beside IDOK and IDCANCEL, what a value page ends with

struct AddPropertyWizard {
    virtual ~AddPropertyWizard() = default;

    DWORD newRecord = 0;
    DWORD newRecordLocked = 0; // the check box stays checked
    DWORD propertyId = 0;
    DWORD type = 0; // none chosen yet
    CEPROPVAL* property = nullptr;
    const DWORD* usedIds = nullptr; // as RunAddPropertyWizard was given them
};

// True when the user finished: the property's identifier and value are filled, a text in a block of the local
// heap that the caller releases after writing it (null for an empty one). `record` becomes 0 when a new
// record is asked for, also when the user turns back later; 0 on entry allows nothing else.
// `usedIds` are the ids of the record's properties with kEndOfIds behind them, null for none.
bool RunAddPropertyWizard(HWND owner, CEOID* record, CEPROPVAL* property, const DWORD* usedIds);

// Releases the text of a property that the wizard or an editor made; others hold none.
void ReleasePropertyText(const CEPROPVAL& property);

// The pages: each ends with IDOK, IDCANCEL or kWizardBack.
int ShowTypePage(HWND owner, AddPropertyWizard* wizard);
int ShowValuePage(HWND owner, AddPropertyWizard* wizard);
