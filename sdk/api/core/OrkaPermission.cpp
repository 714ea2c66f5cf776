#include "OrkaPermission.h"

#include <private/RecordKey.h>

ORKA_RECORD_KEY(OrkaPermission, Default_, "default")
