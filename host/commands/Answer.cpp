#include "commands/Answer.h"

#include "JsonOutput.h"
#include "Output.h"
#include "TextOutput.h"

void writeAnswer(const Options &options, const CMPath &path, const Rows &rows, int first, int step)
{
    if (options.json) {
        writeJson(rowsDocument(path, rows));
    } else {
        writeRows(rows, first, step);
    }
}

void writeAnswer(const Options &options, const CMPath &path, const OrkaRoles &roles)
{
    if (options.json) {
        writeJson(dataDocument(path, roles));
    } else {
        writeRoles(roles);
    }
}
