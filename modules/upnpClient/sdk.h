#pragma once

// Every SDK header that the plug-in uses. Building against an SDK that lays its headers out
// differently means editing this file and no other.

#include <api/core/CMError.h>
#include <api/core/CMGlobal.h>
#include <api/core/CMNodesWorker.h>
#include <api/core/CMPath.h>
#include <api/core/CMReply.h>
#include <api/core/CMRequest.h>
#include <api/core/CMRoot.h>
#include <api/core/CMSyncWorker.h>
#include <api/core/CMValueItem.h>
#include <api/core/OrkaMediaData.h>
#include <api/core/OrkaNetworkInfo.h>
#include <api/core/OrkaPermission.h>
#include <api/core/OrkaPlayListItem.h>
#include <api/core/OrkaRoles.h>
#include <api/core/OrkaValue.h>
#include <api/core/TrString.h>
#include <api/core/dbglog.h>
#include <api/core/orka.h>
#include <playListHelper/PlayListHelper.h>
