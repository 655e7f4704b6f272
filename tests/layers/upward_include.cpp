// Compiled against the view of common/: an include of a higher layer must not be found.
#include "common/Text.h"
#include "dialogues/LinkRules.h"
