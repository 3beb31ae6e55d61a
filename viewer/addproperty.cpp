#include "viewer/addproperty.h"

#include <algorithm>

namespace {

DWORD SuggestedId(const std::vector<DWORD>& usedIds) {
    return usedIds.empty() ? 0 : *std::max_element(usedIds.begin(), usedIds.end()) + 1;
}

} // namespace

bool RunAddPropertyWizard(HWND owner, CEOID* record, CEPROPVAL* property, const std::vector<DWORD>& usedIds) {
    AddPropertyWizard wizard;
    wizard.propertyId = SuggestedId(usedIds);
    wizard.property = property;
    wizard.usedIds = &usedIds;
    wizard.newRecord = wizard.newRecordLocked = *record == 0;
    for (;;) {
        if (ShowTypePage(owner, &wizard) != IDOK)
            return false;
        // Decided with the first "Next >>": coming back and unchecking does not undo it, and is meant not to.
        if (wizard.newRecord)
            *record = 0;
        const int result = ShowValuePage(owner, &wizard);
        if (result != kWizardBack)
            return result == IDOK;
    }
}
