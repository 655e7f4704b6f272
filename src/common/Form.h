#pragma once
// The members of the form that the modules below the shell reach: the session flag, the
// console box and what the form keeps for its public operations. The form has no widgets
// here; a console window, where shown, is a view over this state.

#include "common/ConsoleText.h"

#include <QString>

namespace orbline {

struct Form_TesvaneMain {
    bool Connected = false;
    // Character used for non-printing bytes in the panes: the character of code 128.
    QString HiddenChar;
    ConsoleText Txt_Log;
    // Folder made by DataSave_XXXX with kind 1, used by the calls after it.
    QString AppOutFolder;
};

Form_TesvaneMain& Form();
void ResetForm();

}  // namespace orbline
