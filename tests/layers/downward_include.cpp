// Compiled against the view of common/: its own folder and the one below are there.
#include "common/Text.h"
#include "serial/AwComm.h"
