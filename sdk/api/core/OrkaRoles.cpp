#include "OrkaRoles.h"

#include <private/RecordKey.h>

ORKA_RECORD_KEY(OrkaRoles, Path, "path")
ORKA_RECORD_KEY(OrkaRoles, Title, "title")
ORKA_RECORD_KEY(OrkaRoles, Type, "type")
ORKA_RECORD_KEY(OrkaRoles, ContainerType, "containerType")
ORKA_RECORD_KEY(OrkaRoles, ContainerPlayable, "containerPlayable")
ORKA_RECORD_KEY(OrkaRoles, MediaData, "mediaData")
ORKA_RECORD_KEY(OrkaRoles, Icon, "icon")
ORKA_RECORD_KEY(OrkaRoles, Search, "search")
ORKA_RECORD_KEY(OrkaRoles, Permission, "permission")
ORKA_RECORD_KEY(OrkaRowsRoles, Rows, "rows")
ORKA_RECORD_KEY(OrkaRowsRoles, RowsCount, "rowsCount")
ORKA_RECORD_KEY(OrkaRowsRoles, RowsVersion, "rowsVersion")
ORKA_RECORD_KEY(OrkaRowsRoles, Roles, "roles")

QStringList OrkaRoles::all()
{
    return {Path(), Title(), Type(), ContainerType(), ContainerPlayable(), MediaData(), Icon(),
        Search(), Permission()};
}
