#include "OrkaValue.h"

#include <private/RecordKey.h>

ORKA_RECORD_KEY(OrkaValue, String_, "string_")
ORKA_RECORD_KEY(OrkaValue, NetworkInfo, "networkInfo")
