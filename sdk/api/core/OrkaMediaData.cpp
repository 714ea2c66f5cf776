#include "OrkaMediaData.h"

#include <private/RecordKey.h>

ORKA_RECORD_KEY(OrkaMetaData, Artist, "artist")
ORKA_RECORD_KEY(OrkaMetaData, Composer, "composer")
ORKA_RECORD_KEY(OrkaMetaData, Album, "album")
ORKA_RECORD_KEY(OrkaMetaData, Genre, "genre")
ORKA_RECORD_KEY(OrkaMetaData, Date, "date")
ORKA_RECORD_KEY(OrkaMetaData, ServiceID, "serviceID")
ORKA_RECORD_KEY(OrkaResource, MimeType, "mimeType")
ORKA_RECORD_KEY(OrkaResource, Uri, "uri")
ORKA_RECORD_KEY(OrkaResource, Duration, "duration")
ORKA_RECORD_KEY(OrkaResource, BitRate, "bitRate")
ORKA_RECORD_KEY(OrkaResource, SampleFrequency, "sampleFrequency")
ORKA_RECORD_KEY(OrkaResource, BitsPerSample, "bitsPerSample")
ORKA_RECORD_KEY(OrkaMediaData, MetaData, "metaData")
ORKA_RECORD_KEY(OrkaMediaData, Resources, "resources")
