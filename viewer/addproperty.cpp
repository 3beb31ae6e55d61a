#include "viewer/addproperty.h"

#include <algorithm>

namespace {

DWORD SuggestedId(const DWORD* usedIds) {
    DWORD suggested = 0;
    for (; usedIds && *usedIds != kEndOfIds; ++usedIds)
        suggested = std::max(suggested, *usedIds + 1);
    return suggested;
}

} // namespace

bool RunAddPropertyWizard(HWND owner, CEOID* record, CEPROPVAL* property, const DWORD* usedIds) {
    AddPropertyWizard wizard;
    wizard.propertyId = SuggestedId(usedIds);
    wizard.property = property;
    wizard.usedIds = usedIds;
    wizard.newRecord = wizard.newRecordLocked = *record == 0;
    for (;;) {
        if (ShowTypePage(owner, &wizard) != IDOK)
            return false;
        // Quirk: decided with the first "Next >>"; coming back and unchecking does not undo it.
        if (wizard.newRecord)
            *record = 0;
        const int result = ShowValuePage(owner, &wizard);
        if (result != kWizardBack)
            return result == IDOK;
    }
}
